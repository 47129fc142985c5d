#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "platform/file.h"

namespace clipfix {

class JobDriver;
struct LocalTime;

// One running save: the strings of its worker, and the timer that draws its percent. It lives as
// long as its driver holds it or its worker runs.
class CSavePage {
  public:
    // Takes its paths from the job's state, on the interface thread, and starts the timer.
    // `openedDestination` is the destination as it was found when the save began, if there was
    // one; it stands open during the move.
    CSavePage(JobDriver& driver, std::optional<platform::File> openedDestination);

    // The save worker.
    void SaveThreadProc();
    // Draws the percent when it has risen since the last tick. On the interface thread.
    void OnTimer();

  private:
    void SaveRepairedFile();
    void ShowDestination();
    void EndCancelledSave();
    void EndSave();
    [[nodiscard]] bool SaveProgressRoutine(std::uint64_t transferred, std::uint64_t total);

    JobDriver& driver_;
    bool movJob_;
    std::string source_;
    std::string destination_;
    std::optional<platform::File> openedDestination_;
};

// "KelvoClipfix_ <day>-<month>-<year>-<hour>-<minute>-<second>" with ".mov" or ".avi". The numbers
// are not padded and the date begins with a blank.
[[nodiscard]] std::string DefaultSaveName(const LocalTime& time, bool movJob);

}  // namespace clipfix
