#include "harmonet/files/SndFileService.h"

#include "harmonet/files/SndFile.h"
#include "harmonet/files/SndFileCache.h"

namespace Quon
{

SndFileService::SndFileService()
{
    if (SndFile::sndFileCache == nullptr) {
        files = new SndFileCache;
        SndFile::SetSndFileCache(files);
    }
}

SndFileService::SndFileService(const Options& options)
    : SndFileService()
{
    if (files != nullptr) {
        files->ReadOptions(options);
    }
}

SndFileService::~SndFileService()
{
    if (SndFile::sndFileCache == files) {
        SndFile::SetSndFileCache(nullptr);
    }
    delete files;
}

} // namespace Quon
