/// The memory of models of large files: big blocks lie side by side, where the system can back them with huge pages,
/// and are used again for the next file. A quarter of the time for a large file would go into page faults otherwise.
#pragma once

#include <cstddef>
#include <cstdint>

/// Reserves address space for the models of files of at most `file_bytes` bytes, of which `models` are held at a time,
/// each by a thread of its own. Called once, before there are threads.
///
/// Nothing happens for small files, or where the system declines; memory then comes from `std::malloc`, as it does for
/// what does not fit.
void reserveMemory(std::uint64_t file_bytes, std::size_t models);

/// While this lives, big blocks that this thread asks for come from what is reserved for it. What this model leaves is
/// used by the next one of the thread; up to 128 MiB are kept for it, the rest goes back to the system. A block that
/// lives longer is safe: its space is used again when it is gone.
struct ModelMemory {
  ModelMemory();
  ModelMemory(const ModelMemory &) = delete;
  ModelMemory &operator=(const ModelMemory &) = delete;
  ~ModelMemory();
};

/// Asks the system for huge pages for a block, if it has several megabytes. They are taken when the block is written
/// to.
void adviseHugePages(void *block, std::size_t bytes);

/// What `operator new` and `operator delete` of a program ask first (new.cpp).
/// @return a block; null for a small one, or where there is nothing reserved for this thread at the moment.
void *takeReserved(std::size_t bytes);
/// @return whether the block was one of these. Any thread may give it back.
bool giveBackReserved(void *block);
