#pragma once

#include "harmonet/definitions/DefinitionListener.h"
#include "tools/harmonet/DefinitionFile.h"
#include "tools/harmonet/Findings.h"

#include <string>
#include <unordered_map>
#include <vector>

namespace Tool
{

/// Reads a definition as the library does, hears what the reading comes across, and then looks at what
/// will become of the settings when a sound is made. Used once.
class DefinitionCheck final : private Quon::DefinitionListener
{
public:
    /// What there is to say, by line.
    std::vector<Finding> Run(DefinitionFile& file);

private:
    void OnKeyword(const Quon::PString& block, const Quon::PString& keyword, int line) override;
    void OnRemark(const Quon::DefinitionRemark& remark) override;

    std::string Explain(const Quon::DefinitionRemark& remark) const;
    bool IsError(const Quon::DefinitionRemark& remark) const;
    void AddError(int line, const std::string& text) { findings.push_back({line, true, text}); }
    void AddWarning(int line, const std::string& text) { findings.push_back({line, false, text}); }

    void CheckSoundFile(const Quon::SoundDefResource& sound, const Quon::PString& name, int line);
    void CheckLoop(const Quon::SoundDefResource& sound);
    void CheckVariation(const Quon::SoundDefResource& sound);
    void CheckCone(const Quon::SoundDefResource& sound);
    void CheckDistances(const Quon::SoundDefResource& sound);
    void CheckLine(const Quon::SoundDefResource& sound);

    /// The last line of a keyword of the definition itself, or of its line; 0 if it does not stand there.
    int FindLine(const Quon::PString& keyword) const;

    std::vector<Finding> findings;
    Quon::PString lastBlock; ///< In which the last keyword stands.
    std::unordered_map<Quon::PString, int> lines;
    std::unordered_map<Quon::PString, int> blockLines; ///< Of the keywords in the block that is being read.
    std::vector<int> variantLines; ///< In the order of the variants.
    std::vector<std::pair<Quon::PString, int>> effects; ///< Their keywords and lines.
};

} // namespace Tool
