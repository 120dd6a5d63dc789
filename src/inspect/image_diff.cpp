#include "inspect/image_diff.h"

#include <map>
#include <utility>

#include "platform/basics/ansi.h"
#include "platform/basics/runtime_error.h"

namespace qx {

namespace {

// Ranges are matched by name among their siblings; a name that occurs more
// than once is told apart by its count ("reserved #2").
std::vector<std::pair<std::string, const DumpNode*>> keyed(const DumpNode& node) {
    std::vector<std::pair<std::string, const DumpNode*>> out;
    std::map<std::string, int> seen;
    for (const DumpNode& child : node.Children) {
        const int count = ++seen[child.Name];
        out.emplace_back(count == 1 ? child.Name : child.Name + " #" + std::to_string(count), &child);
    }
    return out;
}

class Differ {
public:
    Differ(const ImageDump& before, const ImageDump& after) : before_(before), after_(after) {}

    void compare(const DumpNode& a, const DumpNode& b, std::vector<std::string>& path) {
        const auto left = keyed(a);
        const auto right = keyed(b);
        std::map<std::string, const DumpNode*> rightByKey(right.begin(), right.end());
        std::map<std::string, const DumpNode*> leftByKey(left.begin(), left.end());
        for (const auto& [key, node] : left) {
            auto found = rightByKey.find(key);
            if (found == rightByKey.end()) {
                only(path, key, *node, true);
                continue;
            }
            const DumpNode& other = *found->second;
            if (!node->Children.empty() && !other.Children.empty()) {
                path.push_back(key);
                compare(*node, other, path);
                path.pop_back();
                continue;
            }
            const bool leaves = node->Children.empty() && other.Children.empty();
            std::string valueA = node->Value;
            std::string valueB = other.Value;
            if (leaves && valueA == valueB) {
                // Equal words, perhaps other bytes: a reserved byte, padding.
                const std::string hexA = hexText(before_.Image, node->Offset, node->Length);
                const std::string hexB = hexText(after_.Image, other.Offset, other.Length);
                if (hexA == hexB) continue;
                valueA += " [" + hexA + "]";
                valueB += " [" + hexB + "]";
            }
            ImageDifference d;
            d.Path = path;
            d.Name = key;
            d.Before = std::move(valueA);
            d.After = std::move(valueB);
            d.Layout = node->Layout || other.Layout;
            out.push_back(std::move(d));
        }
        for (const auto& [key, node] : right)
            if (!leftByKey.count(key)) only(path, key, *node, false);
    }

    std::vector<ImageDifference> out;

private:
    void only(const std::vector<std::string>& path, const std::string& key, const DumpNode& node, bool before) {
        ImageDifference d;
        d.Path = path;
        d.Name = key;
        (before ? d.Before : d.After) = node.Value;
        d.OnlyBefore = before;
        d.OnlyAfter = !before;
        d.Layout = node.Layout;
        out.push_back(std::move(d));
    }

    const ImageDump& before_;
    const ImageDump& after_;
};

}  // namespace

std::string ImageDifference::Text() const {
    std::string where;
    for (const std::string& part : Path) where += (where.empty() ? "" : ", ") + part;
    if (OnlyBefore || OnlyAfter) {
        where += (where.empty() ? "" : ", ") + Name;
        const std::string& value = OnlyBefore ? Before : After;
        return where + ": only in " + (OnlyBefore ? "A" : "B") + (value.empty() ? "" : " (" + value + ")");
    }
    return (where.empty() ? "" : where + ": ") + Name + " " + Before + " -> " + After;
}

std::vector<ImageDifference> diffImages(const ImageDump& before, const ImageDump& after) {
    if (before.Kind != after.Kind)
        throw RuntimeError(err::TypeMismatch, L"QxFBCom2",
                           fromUtf8("a " + std::string(imageKindTitle(before.Kind)) + " and a " +
                                    std::string(imageKindTitle(after.Kind)) + " cannot be compared"));
    if (before.Image == after.Image) return {};
    Differ differ(before, after);
    std::vector<std::string> path;
    differ.compare(before.Root, after.Root, path);
    std::vector<ImageDifference> meaning;
    for (const ImageDifference& d : differ.out)
        if (!d.Layout) meaning.push_back(d);
    return meaning.empty() ? differ.out : meaning;
}

}  // namespace qx
