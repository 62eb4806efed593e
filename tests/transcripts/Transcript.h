// tests/transcripts/Transcript.h
//
// The outcome of a request as text that a person reads and a test compares.
#pragma once

#include "transcripts/Scene.h"

#include <string>
#include <vector>

/// The lines of one outcome but for its platform calls, each two blanks in.
std::vector<std::string> Show(const Sample& sample, const RequestOutcome& outcome,
                              const std::vector<std::string>& changes);

/// Compares `text` with a golden file, line by line; a test fails at the first line that differs. With
/// UPDATE_TRANSCRIPTS in the environment the file is written instead.
void CompareWithGolden(const std::string& file, const std::string& text);
