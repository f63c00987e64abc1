#pragma once

#include <nlohmann/json_fwd.hpp>

#include <string>

namespace Tool
{

/// Returns a self-contained page that shows the records. A record has "name" and, for a definition that
/// plays, "soundFile", "rateHz", "channels", "seconds", "lufs" and "peakDecibels" (null for silence),
/// "looping", "gain" and "columns" of a Spectrogram; "findings" are those of `check`, and "error" is the
/// reason why the sound was not measured.
std::string MakePreviewPage(const std::string& title, const nlohmann::ordered_json& records);

} // namespace Tool
