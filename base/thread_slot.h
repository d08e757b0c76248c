// One pointer of each thread's own, null at first, and always where the system has no room for it.
#pragma once

namespace zqv::base {

void* GetThreadSlot() noexcept;
void SetThreadSlot(void* value) noexcept;

}  // namespace zqv::base
