#pragma once

#include "Platform/linux/dbus/AtSpiInquiry.h"

// Looks for objects in a program's user interface.
namespace AtSpiTree {

// Whether the program may be asked to search all that it has. LibreOffice may not: it goes through every cell
// of an empty sheet too, some ten thousand million, and does nothing else from then on. Nor may a program
// that does not say in time which one it is.
[[nodiscard]] bool canSearch(const AtSpiInquiry &inquiry, const AtSpiObject &root);

// The objects that have the focus, outer ones before inner ones: one question where the program can search or
// keeps a list of its objects, else a walk of bounded length through its windows, which leaves out what an
// object makes up as somebody looks at it. `search`: what canSearch says of the program.
[[nodiscard]] std::vector<AtSpiObject> focusedObjects(const AtSpiInquiry &inquiry, const AtSpiObject &root,
                                                      bool search);

// Those of the programs, given by their roots, that call a window of their own active. All are asked at once:
// one that hangs costs a part of the inquiry's time, and is none of them.
[[nodiscard]] std::vector<AtSpiObject> activePrograms(const AtSpiInquiry &inquiry,
                                                      const std::vector<AtSpiObject> &roots);

// The window that an object of the program lies in; null when it cannot be told.
[[nodiscard]] AtSpiObject windowOf(const AtSpiInquiry &inquiry, const AtSpiObject &object,
                                   const AtSpiObject &root);

} // namespace AtSpiTree
