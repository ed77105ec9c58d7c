#pragma once

namespace Ui {
class twDiskProbeClass;
}

/// Makes the form usable without mouse and without eyes: every control gets a name that a screen
/// reader can say, and the help texts beside it as its description, both in the language that the
/// form shows; Tab comes to every control that is of use and gets out of it again. The form looks
/// the same.
void makeAccessible(const Ui::twDiskProbeClass& form);
