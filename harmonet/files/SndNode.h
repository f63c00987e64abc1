#pragma once

#include "harmonet/Export.h"
#include "harmonet/engine/Alloc.h"
#include "harmonet/engine/PString.h"
#include "harmonet/files/SndFile.h"
#include "harmonet/output/SoundFormat.h"

namespace Quon
{

/// The sound data of one file in memory, as stored in the file. Created by SndNodeCache; shared, read-only,
/// by all readers open on it. Task thread only, except for the bytes themselves.
struct HARMONET_INTERNAL_API SndNode : Allocated
{
    SndNode() = default;
    SndNode(const SndNode&) = delete;
    SndNode& operator=(const SndNode&) = delete;
    /// Frees the data and the decoder's data.
    ~SndNode();

    SndNode* next = nullptr; ///< Null, like `prev`, while the node is not on the cache's list.
    SndNode* prev = nullptr;
    SoundFormat format;
    SndFile::Snd_FileType fileType = SndFile::FileNone;
    PString fileName;
    PString foldedName; ///< Key for look-ups in the cache.
    PString substName;
    unsigned char* data = nullptr; ///< Owned.
    void* nodeInfo = nullptr; ///< The result of SndFile::CreateNodeInfo(). Owned.
    unsigned long size = 0; ///< Bytes of `data`, which count towards the budget.
    int priority = 0; ///< The highest priority of any sound that has used the node.
    int useCount = 0; ///< Readers open on the node.
    int holdCount = 0; ///< Holds on the node, which keep it off the list and out of the budget.
    bool cached = false; ///< The node is in the cache, on its list or held.
    SndNode* nextInBucket = nullptr; ///< In the cache's index.
};

} // namespace Quon
