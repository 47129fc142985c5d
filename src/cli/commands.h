#pragma once

#include "cli/exit_status.h"
#include "cli/options.h"

namespace clipfix::cli {

// Each runs one command to its end, prints what is to be printed, and gives the exit status.
[[nodiscard]] ExitStatus RunRepair(const RepairOptions& options);
[[nodiscard]] ExitStatus RunCheck(const CheckOptions& options);
[[nodiscard]] ExitStatus RunScan(const ScanOptions& options);
[[nodiscard]] ExitStatus RunGui(const GuiOptions& options);

}  // namespace clipfix::cli
