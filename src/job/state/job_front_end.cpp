#include "job/state/job_front_end.h"

namespace clipfix {

void CloseMessage(JobState& state, MessageAnswer answer) {
    state.g_bMessageOpen = 0;
    state.g_bMessageYes = answer == MessageAnswer::Yes ? 1 : 0;
    state.g_nMessageKind = 0;
}

}  // namespace clipfix
