#pragma once

#include "repairavi/pass.h"

namespace clipfix {

// How the scan was left.
enum class ScanEnd {
    Finished,    // at the end of the damaged file
    Cancelled,   // g_bAviContinue was found 0
    GaveUp,      // the job cannot be done
    StoodStill,  // the state can never change again; see Next::StandStill
};

// The one forward pass over the damaged file. At every place it compares the bytes with a fixed
// list of markers, and acts on the first that matches; what it does not recognise it steps over.
[[nodiscard]] ScanEnd ScanDamagedFile(Pass& pass);

}  // namespace clipfix
