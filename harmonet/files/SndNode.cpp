#include "harmonet/files/SndNode.h"

namespace Quon
{

SndNode::~SndNode()
{
    Alloc::Delete(data);
    Alloc::Delete(nodeInfo);
}

} // namespace Quon
