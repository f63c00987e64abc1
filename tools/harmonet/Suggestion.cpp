#include "tools/harmonet/Suggestion.h"

#include <algorithm>

namespace Tool
{

namespace
{

/// Returns the optimal string alignment distance: the number of letters to insert, delete, replace or swap
/// with their neighbour to turn one word into the other.
std::size_t Distance(const std::string& from, const std::string& to)
{
    std::vector<std::vector<std::size_t>> table(from.size() + 1, std::vector<std::size_t>(to.size() + 1));
    for (std::size_t i = 0; i <= from.size(); ++i) {
        for (std::size_t j = 0; j <= to.size(); ++j) {
            if (i == 0 || j == 0) {
                table[i][j] = i + j;
                continue;
            }
            const std::size_t replace = table[i - 1][j - 1] + (from[i - 1] == to[j - 1] ? 0 : 1);
            table[i][j] = std::min({table[i - 1][j] + 1, table[i][j - 1] + 1, replace});
            if (i > 1 && j > 1 && from[i - 1] == to[j - 2] && from[i - 2] == to[j - 1]) {
                table[i][j] = std::min(table[i][j], table[i - 2][j - 2] + 1);
            }
        }
    }
    return table[from.size()][to.size()];
}

} // namespace

std::string SuggestWord(const std::string& word, const std::vector<std::string>& known)
{
    std::string nearest;
    std::size_t minimum = std::max<std::size_t>(1, word.size() / 3) + 1;
    for (const std::string& candidate : known) {
        const std::size_t distance = Distance(word, candidate);
        if (distance < minimum) {
            minimum = distance;
            nearest = candidate;
        }
    }
    return nearest;
}

} // namespace Tool
