#include "tools/harmonet/EngineOptions.h"

#include "harmonet/engine/Options.h"
#include "tools/harmonet/ToolError.h"

namespace Tool
{

void SetEngineOptions(Quon::Options& options, const std::vector<std::string>& texts)
{
    for (const std::string& text : texts) {
        if (!options.SetFromText(text.c_str())) {
            throw ToolError("'" + text + "' is not an option of the form Key=Value", ExitCode::BadArguments);
        }
    }
}

} // namespace Tool
