#pragma once

#include "harmonet/engine/Alloc.h"

namespace Quon
{

class Display;

/// Something that a display can draw. This engine has no display: the class only reserves the operation that
/// the nodes of a rendering engine have.
class HARMONET_ENGINE_API Element : public Allocated
{
public:
    Element() = default;
    Element(const Element&) = default;
    Element& operator=(const Element&) = default;
    virtual ~Element();

    /// The default draws nothing.
    virtual void Render(Display* display);
};

} // namespace Quon
