#pragma once

namespace plakard {

// Forgets the reason of an earlier failed decode, so that a failure which
// sets no reason of its own is not reported with a stale one.
void clearDecoderFailureReason();

}  // namespace plakard
