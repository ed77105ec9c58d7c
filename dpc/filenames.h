#pragma once

// File names are bytes, and QString holds text. By default Qt cannot name a file whose name is not
// UTF-8, and leaves it out of lists.

/// Decodes names from now on so that each byte that is not UTF-8 becomes a lone surrogate, U+DC80
/// to U+DCFF, and encodes those back to the byte. printable() shows it as "\xFC". Does nothing if
/// the locale's encoding is not UTF-8.
void keepForeignBytesInFileNames();
