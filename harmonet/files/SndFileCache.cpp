#include "harmonet/files/SndFileCache.h"

#include "harmonet/engine/Messages.h"
#include "harmonet/engine/Options.h"
#include "harmonet/files/SndFileHandle.h"

#include <memory>

namespace Quon
{

SndFileCache::~SndFileCache()
{
    ReleaseAll();
}

SndFileHandle* SndFileCache::Acquire(const PString& substName, const PString& fileName)
{
    if (SndFileHandle* known = Find(substName, fileName)) {
        ++known->useCount;
        return known;
    }
    std::unique_ptr<SndFileHandle> opened(new SndFileHandle(*this, substName, fileName));
    const Result result = opened->file.Open(substName, fileName.GetText(), File::modeRead);
    if (!result.IsOk()) {
        Report(MessageLevel::Error, "sound file '", fileName, "' of owner '", substName, "' ",
            File::DescribeCode(result.GetCode()));
        return nullptr;
    }
    opened->LinkBefore(handles);
    ++count;
    return opened.release();
}

void SndFileCache::Release(SndFileHandle* handle)
{
    if (handle == nullptr) {
        return;
    }
    if (--handle->useCount <= 0) {
        handle->list.Destroy(handle);
    }
}

void SndFileCache::ReleaseAll()
{
    while (handles.IsLinked()) {
        Destroy(static_cast<SndFileHandle*>(handles.next));
    }
}

void SndFileCache::ReadOptions(const Options& options)
{
    int value = 0;
    options.Get("MpegStandard", value, 0);
    if (value != 0 && value != 1) {
        Report(MessageLevel::Warning, "option MpegStandard=", value, ": expected 0 or 1; using 0");
    }
    SetMpegStandard(value == 1);
}

SndFileHandle* SndFileCache::Find(const PString& substName, const PString& fileName)
{
    const PString foldedName = File::FoldName(fileName);
    for (IListNode* node = handles.next; node != &handles; node = node->next) {
        auto* handle = static_cast<SndFileHandle*>(node);
        if (handle->foldedName == foldedName && handle->substName == substName) {
            return handle;
        }
    }
    return nullptr;
}

void SndFileCache::Destroy(SndFileHandle* handle)
{
    handle->Unlink();
    --count;
    delete handle;
}

} // namespace Quon
