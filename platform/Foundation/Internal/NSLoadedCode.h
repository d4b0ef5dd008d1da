#pragma once

#include <string>
#include <vector>

/// @file
/// Where the code of this process comes from. Every folder is absolute, without symbolic links, and held the
/// file when it was determined: a name that is relative to some folder, or of no file, never counts. Safe
/// from any thread.

/// Returns the folder of the program, or of this library, as it was when this library was loaded: the program
/// may have been replaced since, and the library's name may have been relative to a folder that the process
/// has left. Empty if it is unknown.
///@{
const std::string& NSFolderOfProgram();
const std::string& NSFolderOfLibrary();
///@}

/// Returns the folder of each library that is loaded now, in the loader's order. Takes long.
std::vector<std::string> NSFoldersOfLoadedLibraries();
