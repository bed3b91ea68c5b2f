// Ten processes read and change one database file for twenty seconds. The rival has the same settings:
// rollback journal, synchronous EXTRA, five seconds of waiting for a lock.

#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <exception>
#include <filesystem>
#include <functional>
#include <iostream>
#include <memory>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "engines/sqlite/engine.h"
#include "platform/clock.h"
#include "platform/database/database.h"
#include "platform/error.h"
#include "support/harness.h"
#include "support/plain_sqlite.h"

namespace voxa::bench {

namespace {

using Clock = std::chrono::steady_clock;

constexpr int processes = 10;
constexpr int rowsAtFirst = 1000;
constexpr auto duration = std::chrono::seconds(20);

/// What a side does with the file, in one process. Each is a call, and answers whether it was let in: false
/// when the file was locked for longer than it waits.
class User {
 public:
  virtual ~User() = default;
  virtual bool lookUp(int id) = 0;
  virtual bool insert(int id) = 0;
  virtual bool update(int id) = 0;
  virtual bool transaction(int first, int second) = 0;  ///< looks the first up, then updates both
};

class OurUser : public User {
 public:
  explicit OurUser(const std::string& path) : engine_(makeSqliteEngine(clock_)), db_(engine_->open(path)) {}

  bool lookUp(int id) override {
    return letIn([&] { read(id); });
  }
  bool insert(int id) override {
    return letIn([&] {
      db_->execute("insert into Visits (Id, Name, Visited) values (" + std::to_string(id) +
                   ", 'Somebody', 0)");
    });
  }
  bool update(int id) override {
    return letIn([&] { add(id); });
  }
  bool transaction(int first, int second) override {
    return letIn([&] {
      Transaction transaction(*engine_, *db_);
      read(first);
      add(first);
      add(second);
      transaction.commit();
    });
  }

 private:
  static bool letIn(const std::function<void()>& call) {
    try {
      call();
      return true;
    } catch (const Error& error) {
      if (error.number() != err::dbLocked) throw;
      return false;
    }
  }
  void read(int id) {
    require(db_->openRecordset("select Name from Visits where Id = " + std::to_string(id))->get(0).isText(),
            "our row is gone");
  }
  void add(int id) {
    db_->execute("update Visits set Visited = Visited + 1 where Id = " + std::to_string(id));
  }

  SystemClock clock_;
  std::unique_ptr<DatabaseEngine> engine_;
  std::shared_ptr<Database> db_;
};

class PlainUser : public User {
 public:
  explicit PlainUser(const std::string& path) : db_(path) {
    db_.run("PRAGMA synchronous=EXTRA; PRAGMA busy_timeout=5000");
    find_ = db_.prepare("SELECT Name FROM Visits WHERE Id = ?1");
    insert_ = db_.prepare("INSERT INTO Visits (Id, Name, Visited) VALUES (?1, 'Somebody', 0)");
    add_ = db_.prepare("UPDATE Visits SET Visited = Visited + 1 WHERE Id = ?1");
    begin_ = db_.prepare("BEGIN IMMEDIATE");
    commit_ = db_.prepare("COMMIT");
  }

  bool lookUp(int id) override {
    return letIn([&] { read(id); });
  }
  bool insert(int id) override {
    return letIn([&] { run(insert_, id); });
  }
  bool update(int id) override {
    return letIn([&] { run(add_, id); });
  }
  bool transaction(int first, int second) override {
    const bool done = letIn([&] {
      db_.run(begin_);
      read(first);
      run(add_, first);
      run(add_, second);
      db_.run(commit_);
    });
    if (!done && db_.inTransaction()) db_.run("ROLLBACK");
    return done;
  }

 private:
  static bool letIn(const std::function<void()>& call) {
    try {
      call();
      return true;
    } catch (const PlainSqlite::Busy&) {
      return false;
    }
  }
  void run(const PlainSqlite::Statement& statement, int id) {
    sqlite3_bind_int(statement.get(), 1, id);
    db_.run(statement);
  }
  void read(int id) {
    sqlite3_bind_int(find_.get(), 1, id);
    require(db_.nextRow(find_) && text(find_, 0).size() == 8 && !db_.nextRow(find_),
            "the rival's row is gone");
  }

  PlainSqlite db_;
  PlainSqlite::Statement find_, insert_, add_, begin_, commit_;
};

/// What one process did.
struct Count {
  int calls = 0;
  int refused = 0;
  int inserted = 0;
  int added = 0;
  double longest = 0;  ///< seconds of one call
};

/// What all processes see.
struct Shared {
  std::atomic<int> ready = 0;
  std::atomic<bool> begun = false;
  Count counts[processes];
};

void work(User& user, int process, Clock::time_point end, Count& count) {
  std::mt19937 random(static_cast<unsigned>(process));
  std::uniform_int_distribution<int> percent(0, 99);
  std::uniform_int_distribution<int> row(1, rowsAtFirst);
  int next = (process + 1) * 1'000'000;
  for (Clock::time_point start = Clock::now(); start < end;) {
    const int kind = percent(random);
    const int id = row(random);
    bool done = false;
    if (kind < 60) {
      done = user.lookUp(id);
    } else if (kind < 75) {
      if ((done = user.insert(next++))) ++count.inserted;
    } else if (kind < 90) {
      if ((done = user.update(id))) ++count.added;
    } else if ((done = user.transaction(id, row(random)))) {
      count.added += 2;
    }
    ++count.calls;
    if (!done) ++count.refused;
    const Clock::time_point stop = Clock::now();
    count.longest = std::max(count.longest, std::chrono::duration<double>(stop - start).count());
    start = stop;
  }
}

using MakeUser = std::function<std::unique_ptr<User>()>;

/// The life of a forked process; its exit code.
int processLife(const MakeUser& makeUser, int process, Shared& shared) {
  try {
    const std::unique_ptr<User> user = makeUser();
    ++shared.ready;
    while (!shared.begun) usleep(1000);
    work(*user, process, Clock::now() + duration, shared.counts[process]);
    return 0;
  } catch (const Error& error) {
    std::cerr << error.number() << " " << error.description() << '\n';
  } catch (const std::exception& error) {
    std::cerr << error.what() << '\n';
  }
  ++shared.ready;
  return 1;
}

/// Runs ten processes over a file, and checks that it holds what they were told that it holds.
std::vector<Count> contend(const std::string& path, const MakeUser& makeUser) {
  void* const memory =
      mmap(nullptr, sizeof(Shared), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
  require(memory != MAP_FAILED, "No memory for the counts");
  auto& shared = *new (memory) Shared;
  for (int process = 0; process < processes; ++process) {
    const pid_t child = fork();
    require(child >= 0, "Cannot fork");
    if (child == 0) _exit(processLife(makeUser, process, shared));
  }
  while (shared.ready < processes) usleep(1000);
  shared.begun = true;
  bool succeeded = true;
  for (int process = 0; process < processes; ++process) {
    int status = 0;
    while (wait(&status) < 0) require(errno == EINTR, "Lost a process");
    succeeded = succeeded && status == 0;
  }
  require(succeeded, "One of ten processes fails");
  std::vector<Count> counts(std::begin(shared.counts), std::end(shared.counts));
  (void)munmap(memory, sizeof(Shared));

  int rows = rowsAtFirst;
  int visited = 0;
  for (const Count& count : counts) {
    rows += count.inserted;
    visited += count.added;
  }
  PlainSqlite file(path);
  const PlainSqlite::Statement sums = file.prepare("SELECT count(*), sum(Visited) FROM Visits");
  require(file.nextRow(sums) && sqlite3_column_int(sums.get(), 0) == rows &&
              sqlite3_column_int(sums.get(), 1) == visited,
          "The file holds something else than what ten processes put there");
  return counts;
}

struct Figures {
  double calls = 0;    ///< a second, all together
  double refused = 0;  ///< of a thousand calls
  double slowest = 0;  ///< calls of the slowest process, in % of the average
  double longest = 0;  ///< seconds of the longest call
};

Figures figuresOf(const std::vector<Count>& counts) {
  Figures out;
  double calls = 0;
  double least = counts.front().calls;
  for (const Count& count : counts) {
    calls += count.calls;
    out.refused += count.refused;
    least = std::min(least, static_cast<double>(count.calls));
    out.longest = std::max(out.longest, count.longest);
  }
  out.calls = calls / std::chrono::duration<double>(duration).count();
  out.refused *= 1000 / calls;
  out.slowest = 100 * least * processes / calls;
  return out;
}

void makeFile(const std::string& path) {
  const SystemClock clock;
  const std::unique_ptr<DatabaseEngine> engine = makeSqliteEngine(clock);
  const std::shared_ptr<Database> db = engine->create(path);
  TableDef table{"Visits", {}, {{.name = "Key", .fields = {"Id"}, .primary = true}}};
  addField(table, "Id", DataType::Long);
  addField(table, "Name", DataType::Text, 20);
  addField(table, "Visited", DataType::Long);
  db->createTable(table);
  Transaction transaction(*engine);
  for (int id = 1; id <= rowsAtFirst; ++id) {
    db->execute("insert into Visits (Id, Name, Visited) values (" + std::to_string(id) + ", 'Somebody', 0)");
  }
  transaction.commit();
}

Rows measure(const Harness& /*harness*/) {
  namespace fs = std::filesystem;
  std::string folder = (fs::current_path() / "locks-XXXXXX").string();
  require(mkdtemp(folder.data()) != nullptr, "Cannot make a folder");
  const std::string ourFile = folder + "/ours.mdb";
  const std::string plainFile = folder + "/rival.mdb";
  makeFile(ourFile);
  fs::copy_file(ourFile, plainFile);
  const Figures ours = figuresOf(contend(ourFile, [&] { return std::make_unique<OurUser>(ourFile); }));
  const Figures rival = figuresOf(contend(plainFile, [&] { return std::make_unique<PlainUser>(plainFile); }));
  fs::remove_all(folder);
  return {{"ten processes at one file", "calls a second", ours.calls, rival.calls},
          {"the same, refused since the file was locked", "of 1,000 calls", ours.refused, rival.refused},
          {"the same, calls of the slowest process", "% of the average", ours.slowest, rival.slowest},
          {"the same, the longest call", "s", ours.longest, rival.longest}};
}

const Registration registration("locks", measure);

}  // namespace

}  // namespace voxa::bench
