// Documents from arbitrary bytes. Whatever could be read is written such that it reads back as the same tree.
#include "fuzz/Fuzz.h"
#include "reflection/cXml.h"

#include <cstring>
#include <memory>
#include <utility>
#include <vector>

using trellis::Check;
using trellis::cStr;
using trellis::cXml;

namespace {

/// Levels of a tree, the root alone being 1; aborts where two trees differ.
int CompareTrees(const cXml& a, const cXml& b) {
    struct Pair {
        const cXml* A;
        const cXml* B;
        int Depth;
    };
    std::vector<Pair> rest = {{&a, &b, 1}};
    int depth = 0;
    while (!rest.empty()) {
        const Pair pair = rest.back();
        rest.pop_back();
        depth = pair.Depth > depth ? pair.Depth : depth;
        Check(std::strcmp(pair.A->GetQuoteName(), pair.B->GetQuoteName()) == 0);
        Check(pair.A->GetBody() == pair.B->GetBody());
        Check(pair.A->GetNSubQuotes() == pair.B->GetNSubQuotes());
        for (int i = 0; i < pair.A->GetNSubQuotes(); i++) {
            rest.push_back({pair.A->GetSubQuote(i), pair.B->GetSubQuote(i), pair.Depth + 1});
        }
    }
    return depth;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    // A heap block without slack, so that a read past the text's end shows.
    const auto text = std::make_unique<char[]>(size + 1);
    std::copy_n(data, size, text.get());
    const int length = int(std::strlen(text.get()));

    cXml tree;
    const int used = tree.Load(text.get());
    Check(used <= length && (used > 0) == (used != -1 && length > 0));
    cStr start;
    tree.GetXMLSource(&start, 0, 500);
    if (used < 1) {
        tree.Load("<a>b</a>"); // what a failure left behind can be used on
        return 0;
    }

    cStr written;
    tree.GetXMLSource(&written, 0);
    Check(std::memcmp(start.Text(), written.Text(), size_t(start.Length())) == 0);
    cXml again;
    Check(again.Load(written) == written.Length() - 1); // all but the last line end
    const int depth = CompareTrees(tree, again);
    cStr writtenAgain;
    again.GetXMLSource(&writtenAgain, 0);
    Check(writtenAgain == written);

    Check(cXml().Load(text.get(), depth) == used);
    Check(cXml().Load(text.get(), depth - 1) == -1);
    return 0;
}
