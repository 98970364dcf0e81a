// The utilities in full.
#pragma once

#include "utils/Aes.h"
#include "utils/Base16.h"
#include "utils/Base64.h"
#include "utils/CharSet.h"
#include "utils/Crc.h"
#include "utils/IntervalSet.h"
#include "utils/IpAddress.h"
#include "utils/Md5.h"
#include "utils/Sha1.h"
#include "utils/String.h"
#include "utils/TripleDes.h"
