#include "shared/kvfile.h"
#include "shared/kvstring16.h"
#include "shared/kvstring8.h"

// Other programs know the strings without their definitions. The capacities that they use are made
// here; kvshared.map says which of the operations they see.
template class _kvString8_allSize<15>;
template class _kvString8_allSize<20>;
template class _kvString8_allSize<50>;
template class _kvString8_allSize<maxLogFileName>;
template class _kvString8_allSize<500>;
template class _kvString8_allSize<maxLogFileText>;
template class _kvString<500>;
template class _kvString<1000>;

int kvCharLen(const unsigned short* text)
{
    return kvdetail::textLength(text);
}
