#pragma once

namespace kadrona::printing::cups {

/// How the process ends that asks the print service (ask/main.cpp).
enum class AskCode {
    Answered = 0,
    Usage = 10,
    /// Nothing stands at the address.
    Missing,
    NoService,
    /// The service answered in HTTP only; the output is libcups' status.
    Refused,
    Silent,
    /// More has come than any answer takes.
    TooLarge,
    /// What came is nothing that libcups can read.
    Unreadable,
};

/// The process ends itself so much later than the program ends it.
inline constexpr int GraceSeconds = 2;

}  // namespace kadrona::printing::cups
