#pragma once

#include <cstddef>
#include <span>
#include <string>

/// Writes a new file that only its owner can read, and that is there only once all of it is on the disk.
/// Throws Failure, also if there is a file of that name.
void writePrivateFile(const std::string& path, std::span<const std::byte> bytes);
