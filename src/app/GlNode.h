// One node of a hook chain, and the chain. A processor has a chain for each GL entry that it handles; a module embeds
// one node for each hook that it installs. A call runs from the head to the terminal node, which calls the driver.
#pragma once

#include <cstdint>

namespace android::orvel::app::module {

class OrvelModuleBase;

/**
 * What all functor types are made of.
 * @tparam Functor the functor type: nodes of two entries cannot be linked, even if their signatures are the same
 * @tparam Entry   the type of the GL entry
 */
template <typename Functor, typename Entry>
struct GlNode;

template <typename Functor, typename R, typename... Args>
struct GlNode<Functor, R (*)(Args...)> {
    using Hook = R (*)(OrvelModuleBase* owner, Args...);

    /** A node without a hook is never installed nor removed. */
    constexpr GlNode() = default;
    constexpr GlNode(OrvelModuleBase* owner_, Hook hook_, int32_t priority_ = 0)
        : owner(owner_),
          hook(hook_),
          priority(priority_) {}

    /** Continues the chain behind this node. A hook that does not do so swallows the call. */
    R CallNext(Args... args) const { return next->hook(next->owner, args...); }

    OrvelModuleBase* owner = nullptr; // given back to the hook; null in terminal nodes
    Hook hook = nullptr;
    int32_t priority = 0;    // ascending along the chain
    Functor* next = nullptr; // null only in terminal nodes and in nodes that are not installed

protected:
    static R DoNothing(OrvelModuleBase*, Args...) { return R(); }
};

/** The head of a chain. Belongs to one processor, is used on its thread only, and locks nothing. */
template <typename Functor>
class GlChain {
public:
    /** @param terminal shared with all other chains of this kind, and never written */
    constexpr explicit GlChain(Functor& terminal) : mHead(&terminal), mTerminal(&terminal) {}
    GlChain(const GlChain&) = delete;
    GlChain& operator=(const GlChain&) = delete;

    /** Runs the chain with the arguments of the GL entry. */
    template <typename... Args>
    auto Call(Args... args) const {
        return mHead->hook(mHead->owner, args...);
    }

    /** Links node before the first one of a greater priority. A node that is installed already stays where it is. */
    void Install(Functor& node) {
        if (!node.hook || node.next) {
            return;
        }
        Functor** link = &mHead;
        while (*link != mTerminal && (*link)->priority <= node.priority) {
            link = &(*link)->next;
        }
        node.next = *link;
        *link = &node;
    }

    /** Unlinks node, if it is linked. */
    void Remove(Functor& node) {
        if (!node.hook) {
            return;
        }
        for (Functor** link = &mHead; *link != mTerminal; link = &(*link)->next) {
            if (*link == &node) {
                *link = node.next;
                node.next = nullptr; // it may be installed again
                return;
            }
        }
    }

private:
    Functor* mHead;
    Functor* const mTerminal;
};

} // namespace android::orvel::app::module
