#pragma once

// The parts of the names of config files.

/// At the end of every config file's name. A line that ends so names the next config file.
constexpr char configFileExtension[] = ".dpc";

/// Between the name of a series and the extension: the file that creates what the series needs.
constexpr char initFileSuffix[] = "_init";

/// The subfolder in which the files of a series wait until somebody starts them.
constexpr char waitFolderName[] = "_wait/";
