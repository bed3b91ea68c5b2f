#include "report/html.h"

#include <charconv>
#include <kainjow/mustache.hpp>
#include <utility>

#include "platform/error.h"
#include "report/page.h"
#include "report/page_template.h"

namespace voxa {

namespace {

namespace mustache = kainjow::mustache;
using Data = mustache::data;

/// A number of the chart, to the hundredth.
std::string number(double value) {
  char text[32];
  const auto end = std::to_chars(text, text + sizeof text, value, std::chars_format::fixed, 2).ptr;
  return {text, end};
}

/// An object with these values. A value is asked for by its name, also from the sections within.
Data object(std::initializer_list<std::pair<const char*, Data>> values) {
  Data all;
  for (const auto& [name, value] : values) all.set(name, value);
  return all;
}

template <typename All, typename Make>
Data list(const All& all, const Make& make) {
  mustache::list items;
  items.reserve(all.size());
  for (const auto& each : all) items.push_back(make(each));
  return {items};
}

Data texts(const std::vector<std::string>& all) {
  return list(all, [](const std::string& text) { return Data(text); });
}

Data kindsOf() {
  return list(barKinds(), [](const BarKind& kind) {
    return object({{"kind", kind.kind}, {"meaning", kind.meaning}});
  });
}

const char* rankOf(ColumnChart::Mark mark) {
  return mark == ColumnChart::Mark::always ? "always" : mark == ColumnChart::Mark::wide ? "wide" : "none";
}

Data chartOf(const std::optional<ColumnChart>& chart) {
  if (!chart) return {false};
  constexpr double columnWidth = 10;
  constexpr double margin = 1.5;
  double from = 0;
  const Data columns = list(chart->columns, [&](const ColumnChart::Column& column) {
    const Data parts = list(column.parts, [&](const BarPart& part) {
      return object({{"kind", part.kind},
                     {"x", number(from + margin)},
                     {"y", number(part.from)},
                     {"size", number(part.size)}});
    });
    const Data one = object({{"columnText", column.text},
                             {"mark", column.mark},
                             {"rank", rankOf(column.shown)},
                             {"from", number(from)},
                             {"parts", parts}});
    from += columnWidth;
    return one;
  });
  return object({{"chartTitle", chart->title},
                 {"chartText", chart->text},
                 {"width", number(columnWidth * static_cast<double>(chart->columns.size()))},
                 {"grid", list(chart->grid,
                               [](const ColumnChart::GridLine& line) {
                                 return object({{"y", number(line.from)}, {"amount", line.amount}});
                               })},
                 {"columns", columns}});
}

Data barOf(const Bar& bar) {
  return object(
      {{"name", bar.name},
       {"amount", bar.text},
       {"parts", list(bar.parts, [](const BarPart& part) {
          return object({{"kind", part.kind}, {"x", number(part.from)}, {"size", number(part.size)}});
        })}});
}

Data tableOf(const PageTable& table) {
  const auto cell = [&](std::size_t column, const std::string& text) {
    return object({{"text", text}, {"number", static_cast<bool>(table.numbers[column])}});
  };
  std::size_t column = 0;
  const Data headings = list(table.headings, [&](const std::string& text) { return cell(column++, text); });
  const Data rows = list(table.rows, [&](const PageTable::Row& row) {
    column = 1;
    return object({{"head", row.head},
                   {"cells", list(row.cells, [&](const auto& text) { return cell(column++, text); })}});
  });
  return object(
      {{"caption", table.caption}, {"closed", table.closed}, {"headings", headings}, {"rows", rows}});
}

Data sectionOf(const PageSection& section) {
  return object({{"id", section.id},
                 {"heading", section.heading},
                 {"shape", section.whole ? "whole" : "part"},
                 {"sentences", texts(section.sentences)},
                 {"legend", section.legend},
                 {"chart", chartOf(section.chart)},
                 {"hasBars", !section.bars.empty()},
                 {"bars", list(section.bars, barOf)},
                 {"tables", list(section.tables, tableOf)}});
}

}  // namespace

std::string htmlOf(const Page& page) {
  mustache::mustache form(pageTemplate);
  if (!form.is_valid()) throw Error(err::invalidArgument, "The page's template: " + form.error_message());
  return form.render(
      object({{"styleHash", pageStyleHash},
              {"style", pageStyle},
              {"title", page.title},
              {"scope", texts(page.scope)},
              {"summary", texts(page.summary)},
              {"tiles", list(page.tiles,
                             [](const Page::Tile& tile) {
                               return object({{"label", tile.label},
                                              {"value", tile.value},
                                              {"note", tile.note.empty() ? Data(false) : Data(tile.note)}});
                             })},
              {"sections", list(page.sections, sectionOf)},
              {"kinds", kindsOf()},
              {"made", page.made}}));
}

}  // namespace voxa
