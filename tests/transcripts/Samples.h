// tests/transcripts/Samples.h
//
// The requests whose transcripts are kept: at least one for each command, written in the words of trxhost.
#pragma once

#include <span>
#include <string>
#include <vector>

struct Sample
{
    const char* command;
    const char* fields; ///< "field=value" words, as trxhost takes them
    const char* about;  ///< what the sample shows, where the command has several
    bool isNewUser;     ///< the first request of this user: the user table is empty
};

/// In the order of the command numbers, samples of one command together.
std::span<const Sample> Samples();

/// Their commands, each once.
std::vector<std::string> CommandsOfSamples();

/// The lines above what a sample shows.
std::string Title(const Sample& sample);
