#pragma once

#include <string>
#include <vector>

namespace Tool
{

/// The known word that `word` is most likely a slip of the keyboard for; empty if none is near enough.
std::string SuggestWord(const std::string& word, const std::vector<std::string>& known);

} // namespace Tool
