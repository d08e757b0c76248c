// Gives the lists of parts of a message back to the host without recursion.
//
// The list of parts of a body contains entities, whose bodies have lists of parts, and so on. When
// the host frees a list, it calls the destructors of the entities and bodies in it. If these gave
// their lists back at once, the host would free them from within, and freeing a message with 10,000
// levels would take some 30,000 nested calls. So while a list is being freed, other lists of the
// same thread are put into a queue.
#pragma once

#include "host/ref.h"

namespace zqv::objects {

// Gives `list` back, which may be nil. A call from within another call of this function on the same
// thread puts the list into the queue, which the outermost call empties before it returns. When
// memory runs out, the list is given back at once.
void ReleaseParts(host::ArrayRef list) noexcept;

}  // namespace zqv::objects
