#include "card_differences.h"

#include <iostream>

#include "output/table_output.h"
#include "work/card_changes.h"

namespace voxa::cli {

void printDifferences(const CardChanges& changes) {
  TableOutput table({"Number", "Name", "What", "Now", "Then"});
  for (const CardDifference& difference : changes.differences())
    table.add({difference.number, difference.name, difference.column, difference.before, difference.after});
  for (const CardValues& card : changes.newCards()) {
    const Value number = card.number ? Value(*card.number) : Value("next free");
    table.add({number, card.name.value_or(""), "card", "none", "new"});
  }
  if (!table.empty()) table.print(std::cout, false);
}

}  // namespace voxa::cli
