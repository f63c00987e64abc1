#pragma once

#include <string>
#include <vector>

namespace Tool
{

/// Returns the known word that `word` is most likely a typing error for; empty if none is close enough.
std::string SuggestWord(const std::string& word, const std::vector<std::string>& known);

} // namespace Tool
