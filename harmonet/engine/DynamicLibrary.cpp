#include "harmonet/engine/DynamicLibrary.h"

#include "harmonet/engine/LibraryImage.h"
#include "harmonet/engine/Messages.h"
#include "harmonet/engine/NativeLibrary.h"

#include <string_view>

namespace Quon
{

DynamicLibrary::DynamicLibrary(const EngineVector<EngineString>& newFolders)
    : folders(newFolders)
{
}

DynamicLibrary::~DynamicLibrary()
{
    DynamicLibrary::Close();
}

bool DynamicLibrary::Open(const char* name)
{
    Close();
    if (name == nullptr || *name == '\0') {
        return false;
    }
    if (std::string_view(name).find_first_of(NativeLibrary::GetSeparators()) != std::string_view::npos) {
        if (!NativeLibrary::Exists(name)) {
            Report(MessageLevel::Warning, "library '", name, "' does not exist");
        }
        return OpenFile(name);
    }
    // The loader comes last, and not for a file that was found and refused: it could find the same file on
    // its own search path and would not check it as closely.
    bool isRefused = false;
    for (const EngineString& place : Places()) {
        const EngineString path = place + name;
        if (OpenFile(path)) {
            return true;
        }
        isRefused = isRefused || NativeLibrary::Exists(path.c_str());
    }
    return !isRefused && Load(name);
}

void DynamicLibrary::Close()
{
    if (handle != nullptr) {
        NativeLibrary::Unload(handle);
        handle = nullptr;
    }
}

bool DynamicLibrary::GetSymbol(void** address, const char* name)
{
    *address = handle != nullptr && name != nullptr ? NativeLibrary::FindSymbol(handle, name) : nullptr;
    return *address != nullptr;
}

/// The folders to search, each with a trailing separator.
EngineVector<EngineString> DynamicLibrary::Places() const
{
    EngineVector<EngineString> places;
    for (const EngineString& folder : folders) {
        const bool isClosed =
            !folder.empty() && NativeLibrary::GetSeparators().find(folder.back()) != std::string_view::npos;
        places.push_back(isClosed ? folder : folder + '/');
    }
    const EngineString own = NativeLibrary::GetOwnFolder();
    if (!own.empty()) {
        places.push_back(own + "harmonet/");
        places.push_back(own);
    }
    return places;
}

bool DynamicLibrary::OpenFile(const EngineString& path)
{
    if (IsWholeLibraryImage(path.c_str())) {
        return Load(path.c_str());
    }
    if (NativeLibrary::Exists(path.c_str())) {
        Report(MessageLevel::Warning, "library '", path, "' is not a library, or is truncated");
    }
    return false;
}

bool DynamicLibrary::Load(const char* path)
{
    handle = NativeLibrary::Load(path);
    if (handle == nullptr && Messages::AreWanted()) {
        Report(MessageLevel::Warning, "library '", path,
            "' cannot be loaded: ", NativeLibrary::DescribeFailure());
    }
    return handle != nullptr;
}

} // namespace Quon
