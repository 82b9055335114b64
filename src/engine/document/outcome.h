// SPDX-License-Identifier: GPL-3.0-or-later
// "Done, or refused with a reason": what the engine answers when it may say
// no. The engine names the reason with a code and the values its words
// need; the words are chosen where they are shown (src/texts for the viewer
// and kel's messages, kel's own tokens for its JSON), so a reason is never a
// translated string passed around as a success flag.
#pragma once

#include <QtGlobal>

#include <utility>
#include <variant>
#include <vector>

namespace kel {

enum class RefusalCode {
    Blocked,          ///< a restricted category leaves a too small group out
    FlexTotalBlocked, ///< the flex total leaves a too small group out
    NoAnswers,        ///< nobody matches
    TooSmall,         ///< fewer than the document's minimum graph selection
    NoSuchGraph,      ///< a question, block or graph kind the document does not have
    SplitNotAllowed,  ///< a split group would be smaller than the document allows
};

struct Refusal {
    Refusal() = default;
    explicit Refusal(RefusalCode refusalCode, std::vector<qint64> quoted = {})
        : code(refusalCode), values(std::move(quoted))
    {
    }

    RefusalCode code = RefusalCode::NoAnswers;
    std::vector<qint64> values; ///< what the words of `code` quote, in their order
    bool operator==(const Refusal &) const = default;
};

/// A value of T, or the refusal that stands in its place.
template<typename T = void>
class Outcome
{
public:
    Outcome(T value) : mState(std::move(value)) { }
    Outcome(Refusal refusal) : mState(std::move(refusal)) { }

    bool done() const { return mState.index() == 0; }
    /// Only when done().
    const T &value() const { return std::get<0>(mState); }
    T &value() { return std::get<0>(mState); }
    /// Only when !done().
    const Refusal &refusal() const { return std::get<1>(mState); }

private:
    std::variant<T, Refusal> mState;
};

/// Done with nothing to hand back, or refused.
template<>
class Outcome<void>
{
public:
    Outcome() = default;
    Outcome(Refusal refusal) : mRefusal(std::move(refusal)), mRefused(true) { }

    bool done() const { return !mRefused; }
    /// Only when !done().
    const Refusal &refusal() const { return mRefusal; }
    bool operator==(const Outcome &other) const
    {
        return mRefused == other.mRefused && (!mRefused || mRefusal == other.mRefusal);
    }

private:
    Refusal mRefusal;
    bool mRefused = false;
};

} // namespace kel
