#pragma once

#include "harmonet/definitions/DefinitionListener.h"
#include "tools/harmonet/DefinitionFile.h"
#include "tools/harmonet/Findings.h"

#include <string>
#include <unordered_map>
#include <vector>

namespace Tool
{

/// Reads a definition as the library does, collects the remarks of the reader, and then checks how the
/// settings will affect a sound. Each object is used once.
class DefinitionCheck final : private Quon::DefinitionListener
{
public:
    /// Returns the findings, sorted by line.
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

    /// Returns the last line of a keyword of the definition itself or of its *POLYLINE block; 0 if it is not
    /// used.
    int FindLine(const Quon::PString& keyword) const;

    std::vector<Finding> findings;
    Quon::PString lastBlock; ///< The block of the last keyword.
    std::unordered_map<Quon::PString, int> lines;
    std::unordered_map<Quon::PString, int> blockLines; ///< Lines of the keywords in the current block.
    std::vector<int> variantLines; ///< Lines of the variants, in their order.
    std::vector<std::pair<Quon::PString, int>> effects; ///< Keywords and lines.
};

} // namespace Tool
