#include <gtest/gtest.h>

#include "work/suggestions.h"

using namespace voxa;

namespace {

TEST(Suggestions, NamesThatWereMeant) {
  const std::vector<std::string> known = {"Employees", "Visitors", "Front door", "Back door", "Zoë", "list"};
  const std::pair<const char*, const char*> typed[] = {{"Employes", " (did you mean Employees?)"},
                                                       {"lsit", " (did you mean list?)"},
                                                       {"fornt door", " (did you mean Front door?)"},
                                                       {"zoe", " (did you mean Zoë?)"},
                                                       {"door", " (did you mean Front door or Back door?)"},
                                                       {"Cleaners", ""},
                                                       {"", ""}};
  for (const auto& [text, expected] : typed) EXPECT_EQ(didYouMean(text, known), expected) << text;
}

}  // namespace
