// The progress of an unattended run at a terminal: one line on standard error that names the month,
// the file being read and the share of the month's bytes that are done.
//
// State: what the line says. Called by start-up; it learns of the progress through the hooks of
// `mdlConfigs::Run().Ui`, which the windows use in interactive runs.
#ifndef HITWICK_APP_PROGRESS_LINE_H_
#define HITWICK_APP_PROGRESS_LINE_H_

namespace progress_line {

// Shows the line from now on. Does nothing where standard error is no terminal, and nothing when
// the run is to be quiet.
void Begin();
// Takes it away.
void End();

}  // namespace progress_line

#endif  // HITWICK_APP_PROGRESS_LINE_H_
