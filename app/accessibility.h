#pragma once

namespace Ui {
class twDiskProbeClass;
}

/// Makes the form usable without mouse and without eyes: every control gets a name that a screen
/// reader can say, and Tab gets out of every one again. What is seen of the form stays as it is.
void makeAccessible(const Ui::twDiskProbeClass& form);
