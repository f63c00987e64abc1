#pragma once

#include "harmonet/definitions/SoundDefResource.h"
#include "harmonet/engine/ResourceDatabase.h"
#include "tests/support/HostTest.h"

#include <memory>

namespace Quon
{

/// Settings as a text: the file's name, and then what differs from the documented defaults, in the order of
/// the documentation. Effects are written as "echo(50 50 500 500 0)", a line as "line(additional angle: x,y,z
/// ...)".
std::string Describe(const SoundResource& sound);

/// A definition that is loaded under the given name from a folder, as the resource library does it.
class DefinitionTest : public HostTest
{
protected:
    DefinitionTest();
    ~DefinitionTest() override;

    /// Writes the definition and loads it anew: "code" and, if that is 0, the settings. A load that fails
    /// returns the code and the settings too, because a later load starts from them.
    std::string Load(const std::string& text);
    /// The same for the content of the braces of a definition with a file, "a.wav".
    std::string LoadBlock(const std::string& keywords);

    const SoundDefResource& GetDefinition() const { return *definition; }
    /// Loads without writing; the code.
    int LoadAgain();
    /// Begins with a new object.
    void Forget();

    ResourceDatabase database;

private:
    std::unique_ptr<SoundDefResource> definition;
};

} // namespace Quon
