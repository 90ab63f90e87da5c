// SPDX-License-Identifier: MIT
// A sorted, immutable sequence that shares unchanged parts with the sequences it was made from: replacing a few
// elements of a hundred thousand costs those few and a path of nodes, not a copy of all.
//
//            inner          A balanced tree (sibling heights differ by at most 1) whose leaves hold the elements in
//           /     \         runs of up to kLeaf. Nodes never change; a new sequence has new leaves where it differs and
//       inner     leaf      inner nodes on the path to them, and shares all other nodes by reference count. Changed
//      /     \   e e e e    leaves are split and refilled as a whole, which keeps them from becoming too small.
//   leaf    leaf
//   e e e   e e e e         T is copyable without throwing; every node stores the extremes of its Left() and Right().
#pragma once

#include <algorithm>
#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>
#include <span>
#include <utility>
#include <vector>

namespace Graphics {

template <class T> class Sequence {
    struct Node;

    /// One owner of a node.
    class Ref {
    public:
        Ref() noexcept = default;
        explicit Ref(const Node* adopted) noexcept : m_node(adopted) {}
        Ref(const Ref& o) noexcept : m_node(o.m_node) {
            if (m_node != nullptr) {
                m_node->owners.fetch_add(1, std::memory_order_relaxed);
            }
        }
        Ref(Ref&& o) noexcept : m_node(std::exchange(o.m_node, nullptr)) {}
        Ref& operator=(Ref o) noexcept {
            std::swap(m_node, o.m_node);
            return *this;
        }
        ~Ref() {
            if (m_node != nullptr && m_node->owners.fetch_sub(1, std::memory_order_acq_rel) == 1) {
                Node::Destroy(m_node);
            }
        }
        [[nodiscard]] const Node* Get() const noexcept { return m_node; }
        const Node* operator->() const noexcept { return m_node; }
        explicit operator bool() const noexcept { return m_node != nullptr; }

    private:
        const Node* m_node = nullptr;
    };

    struct Node {
        mutable std::atomic<uint32_t> owners{1};
        uint32_t height = 0; // 0: a leaf
        size_t size = 0;     // elements below
        int32_t left = 0, right = 0;
        Ref first, second; // an inner node's halves

        [[nodiscard]] const T* Elements() const noexcept {
            return std::launder(reinterpret_cast<const T*>(reinterpret_cast<const std::byte*>(this) + sizeof(Node)));
        }
        static void Destroy(const Node* node) noexcept {
            if (node->height == 0) {
                std::destroy_n(const_cast<T*>(node->Elements()), node->size);
            }
            node->~Node();
            ::operator delete(const_cast<Node*>(node));
        }
    };
    static_assert(alignof(T) <= alignof(Node));

public:
    Sequence() noexcept = default;
    explicit Sequence(std::span<const T> elements) : m_root(Build(elements)) {}

    [[nodiscard]] bool Empty() const noexcept { return !m_root; }
    [[nodiscard]] size_t Size() const noexcept { return m_root ? m_root->size : 0; }
    [[nodiscard]] int32_t Left() const noexcept { return m_root->left; }
    [[nodiscard]] int32_t Right() const noexcept { return m_root->right; }
    /// Levels above the leaves: under 1.45 log2 of their number.
    [[nodiscard]] uint32_t Height() const noexcept { return m_root ? m_root->height : 0; }
    /// Whether both share all elements in memory, and are therefore equal.
    [[nodiscard]] bool Shares(const Sequence& o) const noexcept { return m_root.Get() == o.m_root.Get(); }

    /// An iterator; may stand behind the last element. The sequence must outlive it.
    class Cursor {
    public:
        Cursor(const Sequence& sequence, size_t index) noexcept {
            const Node* node = sequence.m_root.Get();
            if (node != nullptr && index < node->size) {
                Descend(node, index);
            }
        }
        explicit operator bool() const noexcept { return m_at != m_end; }
        const T& operator*() const noexcept { return *m_at; }
        const T* operator->() const noexcept { return m_at; }
        void Next() noexcept {
            if (++m_at == m_end && m_depth > 0) {
                Descend(m_later[--m_depth], 0);
            }
        }

    private:
        void Descend(const Node* node, size_t index) noexcept {
            while (node->height > 0) {
                const Node* first = node->first.Get();
                if (index < first->size) {
                    m_later[m_depth++] = node->second.Get();
                    node = first;
                } else {
                    index -= first->size;
                    node = node->second.Get();
                }
            }
            m_at = node->Elements() + index;
            m_end = node->Elements() + node->size;
        }

        const T* m_at = nullptr;
        const T* m_end = nullptr;
        uint32_t m_depth = 0;
        std::array<const Node*, 64> m_later; // the height is under 1.45 log2 of the leaves
    };

    /// The index of the first element that `matches`; all matching elements must follow all others.
    template <class Matches> [[nodiscard]] size_t FirstWhere(const Matches& matches) const noexcept {
        size_t before = 0;
        const Node* node = m_root.Get();
        if (node == nullptr) {
            return 0;
        }
        while (node->height > 0) {
            const Node* middle = node->second.Get();
            while (middle->height > 0) {
                middle = middle->first.Get();
            }
            if (matches(*middle->Elements())) {
                node = node->first.Get();
            } else {
                before += node->first->size;
                node = node->second.Get();
            }
        }
        const T* begin = node->Elements();
        const T* end = begin + node->size;
        return before +
               static_cast<size_t>(std::partition_point(begin, end, [&](const T& e) { return !matches(e); }) - begin);
    }

    /// A new sequence in which `middle` replaces the elements [first, last).
    [[nodiscard]] Sequence Replace(size_t first, size_t last, std::span<const T> middle) const {
        if (!m_root) {
            return Sequence(middle);
        }
        // Whole leaves are replaced, and one more where new leaves would be too small.
        size_t from = LeafAround(first < m_root->size ? first : first - 1).first;
        size_t to = last > from ? LeafAround(last - 1).second : last;
        if ((first - from) + middle.size() + (to - last) < kLeaf / 2) {
            if (from > 0) {
                from = LeafAround(from - 1).first;
            } else if (to < m_root->size) {
                to = LeafAround(to).second;
            }
        }
        std::vector<T> elements;
        elements.reserve((first - from) + middle.size() + (to - last));
        Cursor cursor(*this, from);
        for (size_t i = from; i < first; ++i, cursor.Next()) {
            elements.push_back(*cursor);
        }
        elements.insert(elements.end(), middle.begin(), middle.end());
        cursor = Cursor(*this, last);
        for (size_t i = last; i < to; ++i, cursor.Next()) {
            elements.push_back(*cursor);
        }
        Sequence result;
        result.m_root = Join(Join(Head(m_root, from), Build(elements)), Tail(m_root, to));
        return result;
    }

private:
    static constexpr size_t kLeaf = 32;

    [[nodiscard]] static Ref Leaf(std::span<const T> elements) {
        void* block = ::operator new(sizeof(Node) + elements.size_bytes());
        std::uninitialized_copy(elements.begin(), elements.end(),
                                reinterpret_cast<T*>(static_cast<std::byte*>(block) + sizeof(Node)));
        Node* node = new (block) Node;
        node->size = elements.size();
        node->left = elements.front().Left();
        node->right = elements.front().Right();
        for (const T& e : elements) {
            node->left = std::min(node->left, e.Left());
            node->right = std::max(node->right, e.Right());
        }
        return Ref(node);
    }

    [[nodiscard]] static Ref Inner(Ref a, Ref b) {
        Node* node = new (::operator new(sizeof(Node))) Node;
        node->height = std::max(a->height, b->height) + 1;
        node->size = a->size + b->size;
        node->left = std::min(a->left, b->left);
        node->right = std::max(a->right, b->right);
        node->first = std::move(a);
        node->second = std::move(b);
        return Ref(node);
    }

    [[nodiscard]] static Ref Build(std::span<const T> elements) {
        return elements.empty() ? Ref() : Build(elements, (elements.size() + kLeaf - 1) / kLeaf);
    }
    [[nodiscard]] static Ref Build(std::span<const T> elements, size_t leaves) {
        if (leaves == 1) {
            return Leaf(elements);
        }
        const size_t half = leaves / 2;
        const size_t cut = elements.size() / leaves * half;
        return Inner(Build(elements.first(cut), half), Build(elements.subspan(cut), leaves - half));
    }

    /// An inner node over two whose heights differ by at most 2; a difference of 2 is removed by one rotation.
    [[nodiscard]] static Ref Balanced(const Ref& a, const Ref& b) {
        if (a->height > b->height + 1) {
            const Ref &outer = a->first, &inner = a->second;
            return outer->height >= inner->height ? Inner(outer, Inner(inner, b))
                                                  : Inner(Inner(outer, inner->first), Inner(inner->second, b));
        }
        if (b->height > a->height + 1) {
            const Ref &inner = b->first, &outer = b->second;
            return outer->height >= inner->height ? Inner(Inner(a, inner), outer)
                                                  : Inner(Inner(a, inner->first), Inner(inner->second, outer));
        }
        return Inner(a, b);
    }

    [[nodiscard]] static Ref Join(const Ref& a, const Ref& b) {
        if (!a || !b) {
            return a ? a : b;
        }
        if (a->height > b->height + 1) {
            return Balanced(a->first, Join(a->second, b));
        }
        if (b->height > a->height + 1) {
            return Balanced(Join(a, b->first), b->second);
        }
        return Inner(a, b);
    }

    /// The elements before `count`, which is a leaf boundary; Tail gives those from there on.
    [[nodiscard]] static Ref Head(const Ref& node, size_t count) {
        if (count == 0 || count == node->size) {
            return count == 0 ? Ref() : node;
        }
        const size_t half = node->first->size;
        return count <= half ? Head(node->first, count) : Join(node->first, Head(node->second, count - half));
    }
    [[nodiscard]] static Ref Tail(const Ref& node, size_t count) {
        if (count == 0 || count == node->size) {
            return count == 0 ? node : Ref();
        }
        const size_t half = node->first->size;
        return count < half ? Join(Tail(node->first, count), node->second) : Tail(node->second, count - half);
    }

    /// The index range of the leaf that contains an element.
    [[nodiscard]] std::pair<size_t, size_t> LeafAround(size_t index) const noexcept {
        size_t begin = 0;
        const Node* node = m_root.Get();
        while (node->height > 0) {
            const size_t half = node->first->size;
            const bool right = index - begin >= half;
            begin += right ? half : 0;
            node = (right ? node->second : node->first).Get();
        }
        return {begin, begin + node->size};
    }

    Ref m_root;
};

} // namespace Graphics
