#pragma once

/// The states of the windows, each drawn into a file of its own. Those of docs/ are drawn by the first.
namespace scenes {

void ofTheDocuments();
void ofRuns();
void ofSheets();
void ofTheLog();
void ofFirstSteps();
void ofSettings();

} // namespace scenes
