#pragma once

#include "repairavi/pass.h"

namespace clipfix {

// Looks in the buffer for a JPEG picture (its start FF D8 FF, its end FF D9) and writes it to the
// thumbnail file. Nothing reads that file back; how much is written is settled all the same.
void ExtractThumbnail(Pass& pass);

}  // namespace clipfix
