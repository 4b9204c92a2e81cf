/// The memory of the program.
#pragma once

/// Reserves address space for the model of the file at `path`, so that its big blocks lie side by side, where the
/// system can back them with huge pages: of the time for a large file a quarter would go into page faults otherwise.
/// Nothing happens for a small file, for what is no regular file, or where the system declines; memory then comes from
/// `std::malloc` as usual. Not used under a sanitizer, which brings an allocator of its own.
void reserveMemory(const char *path);
