// service/Requests.h
//
// What the service does for each request code.
#pragma once

#include "Boards.h"

namespace service
{

/// Carries `request` out and prints the outcome.
Answer CarryOut(const Request& request);

/// A failure notice with its reason.
Answer FailureNotice(LONG reason) noexcept;

/// Prints one line about `request`, with control characters in its text escaped.
void Print(const Request& request);

} // namespace service
