#include "changed_doors.h"

#include <iostream>

#include "session.h"
#include "work/refusal.h"

namespace voxa::cli {

void showChangedDoors(Session& session, const ChangedDoors& changed) {
  for (const std::string& text : changed.beside) std::cerr << "Mind: " << text << '\n';
  if (changed.newController) {
    std::cout << "A controller is new there: 'voxa download' sends it what it misses\n";
  }
  if (changed.erased) {
    std::cout << "Cards were erased where they lost something: 'voxa download' gives back what they keep\n";
  }
  if (changed.keptFor.empty()) return;
  std::cerr << "Mind: these controllers were not asked to erase their cards, and open to them should they "
               "come back:"
            << eachOnALine(changed.keptFor) << '\n';
  session.leaveToPerson();
}

}  // namespace voxa::cli
