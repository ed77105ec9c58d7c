#include "shared/kvstring16.h"
#include "shared/kvstring8.h"

KV_STRING8_INSTANCES(, )
KV_STRING16_INSTANCES(, )
