#include "work/suggestions.h"

#include <algorithm>
#include <array>

#include "platform/text.h"

namespace voxa {

namespace {

std::u32string charactersOf(const std::string& text) {
  std::u32string characters;
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t behind = behindCharacter(text, at);
    characters += firstCharacter(std::string_view(text).substr(at, behind - at));
    at = behind;
  }
  return characters;
}

/// How many characters have to be put in, left out, changed, or exchanged with the next one.
std::size_t distance(const std::u32string& a, const std::u32string& b) {
  std::array<std::vector<std::size_t>, 3> rows;  // the one before last, the last, and this one
  for (auto& row : rows) row.resize(b.size() + 1);
  for (std::size_t j = 0; j <= b.size(); ++j) rows[2][j] = j;
  for (std::size_t i = 1; i <= a.size(); ++i) {
    std::rotate(rows.begin(), rows.begin() + 1, rows.end());
    const auto& [earlier, last, now] = rows;
    rows[2][0] = i;
    for (std::size_t j = 1; j <= b.size(); ++j) {
      const std::size_t changed = last[j - 1] + (a[i - 1] == b[j - 1] ? 0 : 1);
      rows[2][j] = std::min({changed, last[j] + 1, now[j - 1] + 1});
      if (i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1])
        rows[2][j] = std::min(rows[2][j], earlier[j - 2] + 1);
    }
  }
  return rows[2][b.size()];
}

/// 0 and up, the nearer the smaller; one that is too far away is none.
std::size_t farness(const std::string& typed, const std::string& name) {
  const std::u32string a = charactersOf(typed);
  const std::u32string b = charactersOf(name);
  constexpr std::size_t lettersOfOneMistake = 3;
  const std::size_t most = std::max<std::size_t>(1, a.size() / lettersOfOneMistake);
  const bool comparable = std::max(a.size(), b.size()) - std::min(a.size(), b.size()) <= most;
  const std::size_t far = comparable ? distance(a, b) : most + 1;
  if (far <= most) return far;
  constexpr std::size_t lettersOfAPart = 3;
  const std::size_t at = a.size() < lettersOfAPart ? std::string::npos : b.find(a);
  return at == std::string::npos ? std::string::npos : most + 1 + (at > 0 ? 1 : 0);
}

}  // namespace

std::vector<std::string> nearest(const std::string& typed, const std::vector<std::string>& known,
                                 std::size_t most) {
  std::vector<std::pair<std::size_t, std::string>> near;
  const std::string lower = toLower(typed);
  for (const std::string& name : known) {
    const std::size_t far = farness(lower, toLower(name));
    if (far != std::string::npos) near.emplace_back(far, name);
  }
  std::stable_sort(near.begin(), near.end(),
                   [](const auto& one, const auto& other) { return one.first < other.first; });
  std::vector<std::string> names;
  for (const auto& [far, name] : near) {
    if (names.size() < most && std::find(names.begin(), names.end(), name) == names.end())
      names.push_back(name);
  }
  return names;
}

std::string didYouMean(const std::string& typed, const std::vector<std::string>& known) {
  const std::vector<std::string> near = nearest(typed, known);
  if (near.empty()) return "";
  std::string text = " (did you mean " + near.front();
  for (std::size_t i = 1; i < near.size(); ++i) text += (i + 1 < near.size() ? ", " : " or ") + near[i];
  return text + "?)";
}

Refusal notFound(const std::string& mnemonic, const std::string& typed,
                 const std::vector<std::string>& known) {
  return {mnemonic, typed + didYouMean(typed, known)};
}

}  // namespace voxa
