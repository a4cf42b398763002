#pragma once

namespace quoravel::WordWise {

// The style of what a view window writes. Documents turn these on and off, and nothing else does:
// Meant: a document that ends with one of them on leaves it on for every view opened later.
inline bool Underline = false;
inline bool DoubleStrike = false; ///< shown as bold

} // namespace quoravel::WordWise
