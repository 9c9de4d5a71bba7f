#pragma once

namespace QzXmlLib16
{

/// Whether less than 32 KiB are left of the stack of the calling thread: too little to go on with a recursion, enough
/// to raise a failure and to unwind. False where the limits of the stack are not known, as on a stack that the
/// application has made itself.
bool IsStackLow() noexcept;

/// Throws CQzException when the stack is low. Called once for each level by everything that recurses along a document
/// or a tree of objects.
void RequireStack();

} // namespace QzXmlLib16
