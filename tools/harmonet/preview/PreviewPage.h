#pragma once

#include <nlohmann/json_fwd.hpp>

#include <string>

namespace Tool
{

/// A page that shows the records and needs nothing from anywhere else. A record has "name", and of a
/// definition that plays "soundFile", "rateHz", "channels", "seconds", "lufs" and "peakDecibels" (null for
/// silence), "looping", "gain" and "columns" of a Spectrogram; "findings" are as `check` prints them, and
/// "error" is why the sound was not measured.
std::string MakePreviewPage(const std::string& title, const nlohmann::ordered_json& records);

} // namespace Tool
