// Whether the kernel lets a process close system calls to itself.
#pragma once

namespace quillpad {

bool kernelHasSystemCallFilters();

}  // namespace quillpad
