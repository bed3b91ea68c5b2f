#include "seam_story.h"

#include <algorithm>
#include <fstream>
#include <functional>

#include "platform/datetime.h"
#include "platform/error.h"

namespace voxa {

namespace {

using Rows = std::unique_ptr<Recordset>;

/// A value with the alternative that it is.
std::string shown(const Value& value) {
  const auto* bytes = std::get_if<Bytes>(&value.data());
  return std::to_string(value.data().index()) + ":" +
         (value.isNull()     ? "Null"
          : bytes != nullptr ? hexText(*bytes)
                             : value.toText());
}

std::string shown(const TableDef& table) {
  std::string out = table.name + "(";
  for (const FieldDef& field : table.fields) {
    out += field.name + " " + std::to_string(static_cast<int>(field.type)) + "/" +
           std::to_string(field.size) + " " + shown(field.defaultValue) +
           (field.required ? " required" : "") + (field.allowZeroLength ? " empty" : "") +
           (field.autoIncrement ? " counter" : "") + " " + field.validationRule + ", ";
  }
  for (const IndexDef& index : table.indexes) {
    out += index.name + (index.primary ? " primary" : "") + (index.unique ? " unique" : "") +
           (index.required ? " required" : "");
    for (const std::string& field : index.fields) out += " " + field;
    out += "; ";
  }
  return out + ")";
}

std::string shown(Recordset& rows) {
  std::string out;
  for (std::size_t i = 0; i < rows.fieldCount(); ++i) out += shown(rows.get(i)) + " ";
  return out;
}

std::string whole(Database& database) {
  std::string out;
  for (const std::string& name : database.tableNames()) {
    out += shown(database.tableDef(name));
    database.visitRows(name, [&, width = database.tableDef(name).fields.size()](const Value* row) {
      for (std::size_t i = 0; i < width; ++i) out += " " + shown(row[i]);
      return true;
    });
  }
  for (const Relation& relation : database.relations()) {
    out += " " + relation.name + " " + relation.table + ">" + relation.foreignTable +
           (relation.cascadeUpdate ? " updates" : "") + (relation.cascadeDelete ? " deletes" : "");
    for (const auto& [own, foreign] : relation.fields) out += " " + own + "=" + foreign;
  }
  for (const QueryDef& query : database.queries()) out += " " + query.name + ":" + query.sql;
  return out + " v" + std::to_string(database.schemaVersion());
}

TableDef people() {
  TableDef table{"People", {}, {}};
  table.fields = {{.name = "Id", .type = DataType::Long, .autoIncrement = true},
                  {.name = "Name", .size = 20, .defaultValue = "no \"body\"", .required = true},
                  {.name = "Note", .type = DataType::Memo, .defaultValue = "", .allowZeroLength = true},
                  {.name = "Age", .type = DataType::Byte, .validationRule = "<=120"},
                  {.name = "Steps", .type = DataType::Integer, .defaultValue = std::int16_t{7}},
                  {.name = "Pay", .type = DataType::Currency},
                  {.name = "Weight", .type = DataType::Single},
                  {.name = "Height", .type = DataType::Double},
                  {.name = "Born", .type = DataType::Date, .defaultValue = DateTime{36526.5}},
                  {.name = "Here", .type = DataType::Boolean},
                  {.name = "Code", .type = DataType::Binary, .size = 4},
                  {.name = "Picture", .type = DataType::LongBinary}};
  addIndex(table, "Key", {"Id"}, IndexKind::primary);
  addIndex(table, "ByName", {"Name"}, IndexKind::unique);
  return table;
}

class Story {
 public:
  Story(DatabaseEngine& engine, std::string folder) : engine_(engine), folder_(std::move(folder)) {}

  std::vector<std::string> tell() {
    files();
    definitions();
    values();
    rows();
    statements();
    changesOfDefinitions();
    transactions();
    copies();
    return std::move(lines_);
  }

 private:
  void note(const std::string& what, const std::function<std::string()>& step) {
    std::string line = what + ": ";
    try {
      line += step();
    } catch (const Error& error) {
      const auto& reported = engine_.errors();
      line += "error " + std::to_string(error.number()) + " " +
              (reported.empty() ? "-" : std::to_string(reported.back().number));
    }
    lines_.push_back(line);
  }
  void act(const std::string& what, const std::function<void()>& step) {
    note(what, [&] {
      step();
      return std::string("done");
    });
  }
  std::string path(const std::string& name) const { return folder_ + "\\" + name; }
  Rows open(const std::string& source, RowOptions options = {}) {
    return db_->openRecordset(source, {}, options);
  }

  void files() {
    db_ = engine_.create(path("seam.mdb"));
    act("create again", [&] { (void)engine_.create(path("seam.mdb")); });
    act("open nothing", [&] { (void)engine_.open(path("none.mdb")); });
    std::ofstream(path("text.mdb")) << std::string(5000, 'x');
    act("open a text", [&] { (void)engine_.open(path("text.mdb")); });
    note("open", [&] {
      return std::to_string(engine_.databases().size()) + (db_->updatable() ? "u" : "") +
             (db_->name() == path("seam.mdb") ? "n" : db_->name());
    });
  }

  void definitions() {
    act("create a table", [&] { db_->createTable(people()); });
    act("the same", [&] { db_->createTable(people()); });
    note("the table", [&] { return shown(db_->tableDef("people")); });
    act("no table", [&] { (void)db_->tableDef("Nobody"); });
    TableDef doors{"Doors", {}, {}};
    addField(doors, "Owner", DataType::Long);
    addField(doors, "Name", DataType::Text, 10);
    act("another", [&] { db_->createTable(doors); });
    Relation owns{"Owns", "People", "Doors", {{"Id", "Owner"}}, true, true};
    act("a relation", [&] { db_->createRelation(owns); });
    act("without an index", [&] { db_->createRelation({"Named", "People", "Doors", {{"Note", "Name"}}}); });
    act("an index in use", [&] { db_->deleteIndex("People", "Key"); });
    act("a query", [&] {
      db_->createQuery({"Older", "PARAMETERS [limit] Long; SELECT Name FROM People WHERE Age > [limit]"});
    });
    act("the same query", [&] { db_->createQuery({"older", "SELECT 1"}); });
    act("no query", [&] { db_->deleteQuery("Nobody"); });
    note("version", [&] {
      const std::size_t before = db_->schemaVersion();
      db_->setSchemaVersion(3);
      return std::to_string(before) + std::to_string(db_->schemaVersion());
    });
  }

  void values() {
    const Rows rows = open("People");
    const auto setting = [&](const char* name, const Value& value) {
      act(std::string("set ") + name + " " + shown(value), [&] { rows->set(name, value); });
    };
    setting("Age", 1);
    rows->addNew();
    note("defaults", [&] { return shown(*rows); });
    setting("Name", "Zo\xC3\xAB \xE2\x82\xAC \xF0\x9F\x98\x80");
    setting("Name", std::string(21, 'n'));
    setting("Age", 256);
    setting("Age", "old");
    setting("Age", 44);
    setting("Steps", 12345.5);
    setting("Pay", 1234.56785);
    setting("Weight", 0.1);
    setting("Height", 1.0 / 3);
    setting("Born", DateTime{-1.75});
    setting("Here", true);
    setting("Code", Bytes{std::string("\0\1\xFF", 3)});
    setting("Code", Bytes{"12345"});
    setting("Picture", Bytes{std::string(3000, '\7')});
    note("mode", [&] { return std::to_string(static_cast<int>(rows->editMode())); });
    act("update", [&] { rows->update(); });
    note("the row", [&] {
      rows->goTo(rows->lastModified());
      return shown(*rows);
    });
    act("a duplicate", [&] {
      rows->addNew();
      rows->set("Name", rows->get("Name"));
      rows->set("Name", "Zo\xC3\xAB \xE2\x82\xAC \xF0\x9F\x98\x80");
      rows->update();
    });
    act("against the rule", [&] {
      rows->cancelUpdate();
      rows->edit();
      rows->set("Age", 121);
      rows->update();
    });
    act("nobody's", [&] { (void)db_->execute("INSERT INTO Doors VALUES (99, 'x')"); });
    for (const char* const name : {"Bo", "Cy", "Di", "Al"}) {
      act(name, [&] {
        rows->addNew();
        rows->set("Name", name);
        rows->set("Age", std::int32_t{name[0]});
        rows->update();
      });
    }
    note("source", [&] {
      const Rows few = open("SELECT Name AS N, Age + 1 AS Next FROM People");
      return few->source(0).table + "." + few->source(0).field + " " + few->source(1).field + " " +
             few->field(0).name + std::to_string(few->field(0).size) + few->field(1).name;
    });
  }

  void rows() {
    const Rows rows =
        open("SELECT Id, Name, Age FROM People ORDER BY Name", {.kind = RecordsetKind::dynaset});
    const auto place = [&] {
      return std::string(rows->bof() ? "bof " : "") + (rows->eof() ? "eof" : shown(rows->get("Name")));
    };
    const auto found = [&](bool isFound) { return (isFound ? "yes " : "no ") + place(); };
    note("kind", [&] {
      return std::to_string(static_cast<int>(rows->kind())) + std::to_string(rows->recordCount());
    });
    note("find", [&] { return found(rows->findFirst("Age > 66")); });
    note("find next", [&] { return found(rows->findNext("Age > 66")); });
    note("find previous", [&] { return found(rows->findPrevious("Age = 1")); });
    note("find last", [&] { return found(rows->findLast("Name LIKE 'B*'")); });
    act("find by nothing", [&] { (void)rows->findFirst("Nothing = 1"); });
    note("position", [&] { return std::to_string(rows->absolutePosition()); });
    note("to a position", [&] {
      rows->setAbsolutePosition(2);
      return place();
    });
    const Bookmark mark = rows->bookmark();
    note("move", [&] {
      rows->move(-1);
      return place();
    });
    note("beyond", [&] {
      rows->move(99);
      return place();
    });
    act("further", [&] { rows->moveNext(); });
    act("no row", [&] { (void)rows->get(0); });
    note("mark", [&] {
      rows->goTo(mark);
      return place();
    });
    act("no mark", [&] { rows->goTo(9999); });
    note("clone", [&] {
      const Rows twin = rows->clone();
      const std::string first = shown(*twin);
      twin->goTo(mark);
      return first + shown(*twin);
    });
    note("from", [&] {
      const Rows few = rows->openFrom("Age > 65", "Name DESC");
      return std::to_string(few->recordCount()) + shown(*few);
    });
    note("edit", [&] {
      rows->edit();
      rows->set("Age", 50);
      rows->update();
      return shown(*rows);
    });
    act("remove", [&] { rows->remove(); });
    act("the removed", [&] { (void)rows->get(0); });
    note("again", [&] {
      rows->requery();
      return std::to_string(rows->recordCount()) + place();
    });
    act("field", [&] { (void)rows->get("Nothing"); });
    act("snapshot", [&] { open("People", {.kind = RecordsetKind::snapshot})->edit(); });
    act("read only", [&] { open("People", {.readOnly = true})->edit(); });
    act("back", [&] { open("People", {.kind = RecordsetKind::forwardOnly})->movePrevious(); });
    note("empty", [&] {
      const Rows none = open("SELECT * FROM People WHERE Id < 0");
      none->moveFirst();
      none->moveLast();
      return std::to_string(none->recordCount()) + (none->eof() && none->bof() ? "e" : "");
    });
    const Rows table = open("People", {.kind = RecordsetKind::table});
    act("no index", [&] { (void)table->seek(SeekComparison::equal, {1}); });
    act("unknown index", [&] { table->setIndex("Nothing"); });
    note("seek", [&] {
      table->setIndex("byname");
      std::string out = table->index();
      for (const auto how : {SeekComparison::equal, SeekComparison::greater, SeekComparison::less}) {
        out += table->seek(how, {"cy"}) ? " yes " : " no ";
        out += shown(table->get("Name"));
      }
      return out;
    });
    act("no table", [&] { (void)open("Older", {.kind = RecordsetKind::table}); });
  }

  void statements() {
    note("count", [&] { return std::to_string(db_->execute("UPDATE People SET Steps = Steps + 1")); });
    note("values", [&] {
      return std::to_string(
          db_->execute("UPDATE People SET Note = [text] WHERE Age < [most]", {{"Text", ""}, {"most", 66}}));
    });
    act("a value short", [&] { (void)db_->execute("UPDATE People SET Note = [text]", {{"most", 1}}); });
    act("no value", [&] { (void)open("SELECT * FROM People WHERE Age > [limit]"); });
    act("no statement", [&] { (void)db_->execute("UPDATE People WITH 1"); });
    act("a selection", [&] { (void)db_->execute("SELECT * FROM People"); });
    act("no selection", [&] { (void)open("DELETE FROM Doors"); });
    note("query", [&] { return shown(*db_->openRecordset("older", {{"limit", 65}})); });
    note("command", [&] {
      const auto command = db_->prepare("INSERT INTO Doors (Owner, Name) VALUES ([owner], [name])");
      int count = 0;
      for (int i = 0; i < 250; ++i) count += command->execute({1, "d" + std::to_string(i)});
      return std::to_string(count);
    });
    note("visit", [&] {
      std::string out;
      int seen = 0;
      db_->visitRows("SELECT Name FROM Doors WHERE Owner = [who]",
                     [&](const Value* row) {
                       out = row->toText();
                       return ++seen < 201;
                     },
                     {{"who", 1}});
      return std::to_string(seen) + out;
    });
    note("describe", [&] {
      std::string out;
      for (const char* const text : {"Older", "People", "UPDATE People SET Age = [x]", "DELETE FROM Doors",
                                     "SELECT 1 UNION SELECT 2", "DROP TABLE Doors"}) {
        const QueryInfo info = db_->describe(text);
        out += std::to_string(static_cast<int>(info.kind)) + "p" + std::to_string(info.parameters.size()) +
               "d" + std::to_string(info.declared) + "c" + std::to_string(info.columns.size()) + " ";
      }
      return out;
    });
  }

  void changesOfDefinitions() {
    act("add a field",
        [&] { db_->addField("Doors", {.name = "Floor", .type = DataType::Long, .defaultValue = 2}); });
    note("its rows", [&] { return shown(*open("SELECT Floor FROM Doors")); });
    act("add an index", [&] { db_->addIndex("Doors", {"ByFloor", {"Floor"}, false, true, false}); });
    act("add another", [&] { db_->addIndex("Doors", {"ByName", {"Name"}, false, true, false}); });
    act("a taken name", [&] { db_->addIndex("Doors", {"byname", {"Floor"}}); });
    act("an unknown field", [&] { db_->addIndex("Doors", {"ByX", {"X"}}); });
    act("a field in use", [&] { db_->deleteField("Doors", "Name"); });
    act("another type in use",
        [&] { db_->alterField("Doors", {.name = "Owner", .type = DataType::Double}); });
    act("too small", [&] { db_->alterField("Doors", {.name = "Name", .size = 2}); });
    act("larger", [&] {
      db_->alterField("Doors", {.name = "name", .size = 40, .defaultValue = "door", .required = true});
    });
    act("another type", [&] {
      db_->alterField("Doors",
                      {.name = "Floor", .type = DataType::Text, .size = 5, .validationRule = "<>'9'"});
    });
    note("the table", [&] { return shown(db_->tableDef("Doors")); });
    note("its rows", [&] { return shown(*open("SELECT Floor FROM Doors")); });
    act("delete an index", [&] { db_->deleteIndex("Doors", "ByName"); });
    act("again", [&] { db_->deleteIndex("Doors", "ByName"); });
    act("delete a field", [&] { db_->deleteField("Doors", "Floor"); });
    act("again", [&] { db_->deleteField("Doors", "Floor"); });
    act("by a statement",
        [&] { (void)db_->execute("CREATE TABLE Stairs (Id counter primary key, Steps long)"); });
    note("tables", [&] { return std::to_string(db_->tableNames().size()) + db_->tableNames().back(); });
    act("delete it", [&] { db_->deleteTable("Stairs"); });
    act("delete a relation", [&] { db_->deleteRelation("Owns"); });
    act("again", [&] { db_->deleteRelation("Owns"); });
    act("against rows", [&] {
      (void)db_->execute("INSERT INTO Doors VALUES (99, 'x')");
      db_->createRelation({"Owns", "People", "Doors", {{"Id", "Owner"}}});
    });
  }

  void transactions() {
    const auto count = [&] { return shown(*open("SELECT COUNT(*) FROM Doors")); };
    act("commit nothing", [&] { engine_.commit(); });
    note("rollback", [&] {
      engine_.begin();
      db_->lockForChanges();
      (void)db_->execute("DELETE FROM Doors");
      const std::string within = count();
      db_->setSchemaVersion(9);
      engine_.rollback();
      return within + count() + std::to_string(db_->schemaVersion());
    });
    act("nest", [&] {
      const Transaction transaction(engine_);
      engine_.begin();
    });
    note("closed meanwhile", [&] {
      Transaction transaction(engine_);
      (void)db_->execute("DELETE FROM Doors WHERE Owner = 1");
      db_->close();
      db_ = engine_.open(path("seam.mdb"));
      const std::string within = count();
      transaction.commit();
      return within + count();
    });
  }

  void copies() {
    act("copy", [&] { db_->copyTo(path("copy.mdb")); });
    act("again", [&] { db_->copyTo(path("copy.mdb")); });
    note("the whole", [&] { return whole(*db_); });
    note("the copy", [&] {
      const auto copy = engine_.open(path("copy.mdb"), FileUse::reading);
      return std::string(copy->updatable() ? "u" : "") +
             (whole(*copy) == whole(*db_) ? "same" : whole(*copy));
    });
    act("change what is read",
        [&] { (void)engine_.open(path("copy.mdb"), FileUse::reading)->execute("DELETE FROM Doors"); });
    const Rows rows = open("People");
    db_->close();
    db_->close();
    act("closed", [&] { (void)db_->execute("DELETE FROM Doors"); });
    act("its rows", [&] { rows->moveNext(); });
    note("open", [&] { return std::to_string(engine_.databases().size()); });
  }

  DatabaseEngine& engine_;
  std::string folder_;
  std::shared_ptr<Database> db_;
  std::vector<std::string> lines_;
};

}  // namespace

std::vector<std::string> seamStory(DatabaseEngine& engine, const std::string& folder) {
  return Story(engine, folder).tell();
}

}  // namespace voxa
