// Giving lists of parts back to the host without recursion.
//
// A body's list holds entities, whose bodies hold lists, and so on. When the host frees a list, it
// calls our destructors from within, and these would give the next lists back from within again: a
// message nested 10,000 deep would need 30,000 of the host's stack frames and ours. So a list that
// is to be given back while another one on the same thread is being freed waits until that is done.
#pragma once

#include "host/ref.h"

namespace zqv::objects {

// Gives `list` back, now or, when this is called from within another call on the same thread,
// before the outermost one returns. Never throws. Without memory for a place in the queue it is
// given back at once.
void ReleaseParts(host::ArrayRef list) noexcept;

}  // namespace zqv::objects
