#pragma once

#include "harmonet/engine/Alloc.h"

namespace Quon
{

class Display;

/// What a display can be asked to draw. This engine has no display: the class only holds the place of the
/// operation that nodes of a drawing engine have.
class HARMONET_ENGINE_API Element : public Allocated
{
public:
    Element() = default;
    Element(const Element&) = default;
    Element& operator=(const Element&) = default;
    virtual ~Element();

    /// Draws nothing here.
    virtual void Render(Display* display);
};

} // namespace Quon
