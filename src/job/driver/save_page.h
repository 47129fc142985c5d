#pragma once

#include <atomic>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <thread>

#include "platform/file.h"

namespace clipfix {

class JobDriver;

// One running save: the owner of its worker and of the timer that draws its percent.
class CSavePage {
  public:
    // Starts the worker. `openedDestination` is the destination as it was found when the save
    // began, if there was one; it stands open during the move.
    CSavePage(JobDriver& driver, std::optional<platform::File> openedDestination);
    CSavePage(const CSavePage&) = delete;
    CSavePage& operator=(const CSavePage&) = delete;
    ~CSavePage();

    // Draws the percent when it has risen since the last tick.
    void OnTimer();
    void WaitForThread();

  private:
    void SaveThreadProc();
    void SaveRepairedFile();
    void EndCancelledSave();
    void EndSave(const std::string& destinationFolder);
    [[nodiscard]] bool SaveProgressRoutine(std::uint64_t transferred, std::uint64_t total);

    JobDriver& driver_;
    std::optional<platform::File> openedDestination_;
    std::thread thread_;
};

// "KelvoClipfix_ <day>-<month>-<year>-<hour>-<minute>-<second>" with ".mov" or ".avi". The numbers
// are not padded and the date begins with a blank.
struct LocalTime;
[[nodiscard]] std::string DefaultSaveName(const LocalTime& time, bool movJob);

}  // namespace clipfix
