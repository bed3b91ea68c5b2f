#include "engines/jet_file/stored_queries.h"

#include <algorithm>
#include <functional>
#include <string_view>

#include "platform/text.h"

namespace voxa::jet {

namespace {

// What the attribute of a part says it is.
enum Attribute : int {
  kindPart = 1,
  parameterPart = 2,
  optionPart = 3,
  otherFilePart = 4,
  sourcePart = 5,
  columnPart = 6,
  joinPart = 7,
  wherePart = 8,
  groupPart = 9,
  havingPart = 10,
  orderPart = 11
};

// What the flag of the kind part says the statement is.
enum Kind : int {
  select = 1,
  makeTable = 2,
  append = 3,
  update = 4,
  remove = 5,
  crosstab = 6,
  definition = 7,
  passThrough = 8,
  unite = 9
};

/// Raised with the reason for which a text cannot be composed.
struct Unknown {
  std::string reason;
};

std::string bracketed(const std::string& name) {
  if (name.find_first_of("[]") != std::string::npos) throw Unknown{"it uses the name " + name};
  return '[' + name + ']';
}

/// "table.column" as the file writes it: only some programs put brackets around the names.
std::string bracketedPath(const std::string& path) {
  if (path.find('[') != std::string::npos) return path;
  std::string_view rest = path;
  std::string text;
  do {
    const std::string part(takeUntil(rest, '.'));
    text += (text.empty() ? "" : ".") + bracketed(part);
  } while (!rest.empty());
  return text;
}

std::string parameterType(int flag) {
  switch (flag) {
    case 1:
      return "Bit";
    case 2:
      return "Byte";
    case 3:
      return "Short";
    case 4:
      return "Long";
    case 5:
      return "Currency";
    case 6:
      return "IEEESingle";
    case 7:
      return "IEEEDouble";
    case 8:
      return "DateTime";
    case 9:
      return "Binary";
    case 10:
      return "Text";
    case 11:
      return "LongBinary";
    case 12:
      return "LongText";
    default:
      throw Unknown{"it has a parameter of a type without a name here"};
  }
}

class Composer {
 public:
  explicit Composer(std::vector<QueryPart> parts) : parts_(std::move(parts)) {
    std::stable_sort(parts_.begin(), parts_.end(),
                     [](const QueryPart& a, const QueryPart& b) { return a.order < b.order; });
  }

  std::string statement() {
    if (!of(otherFilePart).empty() && !of(otherFilePart).front()->name1.empty())
      throw Unknown{"it works on another file"};
    const QueryPart* const head = first(kindPart);
    // A select query need not say what it is.
    const int kind = head == nullptr ? int{select} : head->flag;
    switch (kind) {
      case select:
        return parameters() + "SELECT " + options() + columns() + from() + tail();
      case makeTable:
        return parameters() + "SELECT " + options() + columns() + " INTO " + bracketed(head->name1) + from() +
               tail();
      case append:
        return parameters() + appending(bracketed(head->name1));
      case update:
        return parameters() + "UPDATE " + options() + sources() + " SET " + assignments() + where();
      case remove:
        return parameters() + "DELETE " + options() + list(columnPart, ", ", shownColumn) + from() + where();
      case unite:
        return parameters() + parts() + ordering();
      case definition:
        if (head->expression.empty()) throw Unknown{"its text is missing"};
        return head->expression;
      case crosstab:
        throw Unknown{"it is a crosstab (TRANSFORM)"};
      case passThrough:
        throw Unknown{"it is for another server (pass-through)"};
      default:
        throw Unknown{"it is of a kind that is not known here"};
    }
  }

 private:
  using Shown = std::function<std::string(const QueryPart&)>;

  [[nodiscard]] std::vector<const QueryPart*> of(int attribute) const {
    std::vector<const QueryPart*> found;
    for (const QueryPart& part : parts_) {
      if (part.attribute == attribute) found.push_back(&part);
    }
    return found;
  }
  [[nodiscard]] const QueryPart* first(int attribute) const {
    const auto found = of(attribute);
    return found.empty() ? nullptr : found.front();
  }
  [[nodiscard]] std::string list(int attribute, const std::string& separator, const Shown& shown) const {
    std::string text;
    for (const QueryPart* part : of(attribute)) text += (text.empty() ? "" : separator) + shown(*part);
    return text;
  }
  [[nodiscard]] int optionFlags() const {
    const QueryPart* const part = first(optionPart);
    return part == nullptr ? 0 : part->flag;
  }

  static std::string expression(const QueryPart& part) {
    if (part.expression.empty()) throw Unknown{"a part of it is empty"};
    return part.expression;
  }
  static std::string shownColumn(const QueryPart& part) {
    return expression(part) + (part.name1.empty() ? "" : " AS " + bracketed(part.name1));
  }

  [[nodiscard]] std::string parameters() const {
    const std::string declared = list(parameterPart, ", ", [](const QueryPart& part) {
      const bool quoted = part.name1.starts_with('[');
      return (quoted ? part.name1 : bracketed(part.name1)) + ' ' + parameterType(part.flag);
    });
    return declared.empty() ? "" : "PARAMETERS " + declared + "; ";
  }

  [[nodiscard]] std::string options() const {
    constexpr int distinct = 2;
    constexpr int distinctRow = 8;
    constexpr int top = 0x10;
    constexpr int percent = 0x20;
    const int flags = optionFlags();
    std::string text;
    if ((flags & distinct) != 0) text += "DISTINCT ";
    if ((flags & distinctRow) != 0) text += "DISTINCTROW ";
    if ((flags & top) != 0) {
      const std::string count = first(optionPart)->name1;
      if (count.empty() || count.find_first_not_of("0123456789") != std::string::npos)
        throw Unknown{"how many rows it shows is no number"};
      text += "TOP " + count + ' ';
      if ((flags & percent) != 0) text += "PERCENT ";
    }
    return text;
  }

  [[nodiscard]] std::string columns() const {
    constexpr int all = 1;
    std::string text = list(columnPart, ", ", shownColumn);
    if ((optionFlags() & all) != 0) text += text.empty() ? "*" : ", *";
    if (text.empty()) throw Unknown{"it names no columns"};
    return text;
  }

  // Sources

  struct Group {
    std::vector<std::string> names;
    std::string text;
    bool joined = false;
    bool inner = true;
  };

  static Group* groupWith(std::vector<Group>& groups, const std::string& name) {
    for (Group& group : groups) {
      for (const std::string& member : group.names) {
        if (equalNoCase(member, name)) return &group;
      }
    }
    throw Unknown{"it joins " + name + ", which is none of its tables"};
  }

  [[nodiscard]] std::string sources() const {
    std::vector<Group> groups;
    for (const QueryPart* part : of(sourcePart)) {
      std::string text =
          part->expression.empty() ? bracketed(part->name1) : '(' + subquery(part->expression) + ')';
      if (!part->name2.empty()) text += " AS " + bracketed(part->name2);
      groups.push_back({{part->name2.empty() ? part->name1 : part->name2}, text});
    }
    for (const Join& join : joins()) {
      Group* const left = groupWith(groups, join.left);
      Group* const right = groupWith(groups, join.right);
      // Which of the joins before such a condition belongs to cannot be told.
      if (left == right) throw Unknown{"it joins tables in a circle"};
      const auto side = [](const Group& group) { return group.joined ? '(' + group.text + ')' : group.text; };
      left->text = side(*left) + join.words + side(*right) + " ON " + join.condition;
      left->joined = true;
      left->names.insert(left->names.end(), right->names.begin(), right->names.end());
      groups.erase(groups.begin() + (right - groups.data()));
    }
    std::string text;
    for (const Group& group : groups) text += (text.empty() ? "" : ", ") + group.text;
    return text;
  }

  struct Join {
    std::string left;
    std::string right;
    std::string words;
    std::string condition;
  };
  /// Conditions between the same two tables are one.
  [[nodiscard]] std::vector<Join> joins() const {
    std::vector<Join> list;
    for (const QueryPart* part : of(joinPart)) {
      if (part->flag < 1 || part->flag > 3) throw Unknown{"it has a join of an unknown kind"};
      const char* const words = part->flag == 1   ? " INNER JOIN "
                                : part->flag == 2 ? " LEFT JOIN "
                                                  : " RIGHT JOIN ";
      const auto same = std::find_if(list.begin(), list.end(), [&](const Join& join) {
        return join.words == words && equalNoCase(join.left, part->name1) &&
               equalNoCase(join.right, part->name2);
      });
      if (same != list.end()) {
        same->condition = '(' + same->condition + ") AND (" + expression(*part) + ')';
      } else {
        list.push_back({part->name1, part->name2, words, expression(*part)});
      }
    }
    return list;
  }

  static std::string subquery(const std::string& text) {
    const std::size_t last = text.find_last_not_of("; \r\n\t");
    return text.substr(0, last == std::string::npos ? 0 : last + 1);
  }

  [[nodiscard]] std::string from() const {
    const std::string text = sources();
    return text.empty() ? "" : " FROM " + text;
  }

  // What follows

  [[nodiscard]] std::string where() const {
    const QueryPart* const part = first(wherePart);
    return part == nullptr || part->expression.empty() ? "" : " WHERE " + part->expression;
  }
  [[nodiscard]] std::string ordering() const {
    const std::string text = list(orderPart, ", ", [](const QueryPart& part) {
      return expression(part) + (equalNoCase(part.name1, "D") ? " DESC" : "");
    });
    return text.empty() ? "" : " ORDER BY " + text;
  }
  [[nodiscard]] std::string tail() const {
    const std::string groups = list(groupPart, ", ", expression);
    const QueryPart* const having = first(havingPart);
    std::string text = where();
    if (!groups.empty()) text += " GROUP BY " + groups;
    if (having != nullptr && !having->expression.empty()) text += " HAVING " + having->expression;
    return text + ordering();
  }

  [[nodiscard]] std::string assignments() const {
    const std::string text = list(columnPart, ", ", [](const QueryPart& part) {
      if (part.name2.empty()) throw Unknown{"a column that it sets has no name"};
      return bracketedPath(part.name2) + " = " + expression(part);
    });
    if (text.empty()) throw Unknown{"it sets nothing"};
    return text;
  }

  [[nodiscard]] std::string appending(const std::string& target) const {
    constexpr int values = 0x8000;
    const auto all = of(columnPart);
    std::string names;
    std::size_t named = 0;
    std::size_t given = 0;
    std::string shown;
    for (const QueryPart* part : all) {
      if (!part->name2.empty()) {
        names += (names.empty() ? "" : ", ") + bracketedPath(part->name2);
        ++named;
      }
      if ((part->flag & values) != 0) ++given;
      // The alias of what goes into a column is that column.
      shown += (shown.empty() ? "" : ", ") + expression(*part) +
               (part->name1.empty() || (part->flag & values) != 0 ? "" : " AS " + bracketed(part->name1));
    }
    if (named != 0 && named != all.size()) throw Unknown{"it names only some of the columns that it fills"};
    const std::string into = "INSERT INTO " + target + (names.empty() ? "" : " (" + names + ')');
    if (given != 0) {
      if (given != all.size()) throw Unknown{"it appends values and columns together"};
      return into + " VALUES (" + shown + ')';
    }
    return into + " SELECT " + options() + columns() + from() + tail();
  }

  [[nodiscard]] std::string parts() const {
    constexpr int onceOnly = 2;
    const std::string word = (optionFlags() & onceOnly) != 0 ? " UNION " : " UNION ALL ";
    const auto all = of(sourcePart);
    if (all.size() < 2) throw Unknown{"a part of its union is missing"};
    std::string text;
    for (const QueryPart* part : all) text += (text.empty() ? "" : word) + subquery(expression(*part));
    return text;
  }

  std::vector<QueryPart> parts_;
};

}  // namespace

ComposedQuery composeQuery(std::vector<QueryPart> parts) {
  try {
    return {Composer(std::move(parts)).statement(), {}};
  } catch (const Unknown& unknown) {
    return {{}, unknown.reason};
  }
}

}  // namespace voxa::jet
