// tests/transcripts/Transcript.h
//
// The outcome of a request as text that a person reads and a test compares.
#pragma once

#include "transcripts/Golden.h"
#include "transcripts/Scene.h"

#include <string>
#include <vector>

/// The lines of one outcome without its platform calls, indented by two blanks.
std::vector<std::string> Show(const Sample& sample, const RequestOutcome& outcome,
                              const std::vector<std::string>& changes);
