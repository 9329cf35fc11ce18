// The in-memory file beside a plain vector of bytes with an index.
#include "Bench.h"

#include "files/cFile.h"

#include <cstring>
#include <vector>

using trellis::cFile;

namespace {

/// What a codec would write without cFile.
class PlainFile {
public:
    void WriteBytes(const void* data, int size) {
        const auto* bytes = static_cast<const unsigned char*>(data);
        m_Bytes.insert(m_Bytes.end(), bytes, bytes + size);
    }
    void WriteInt(int v) { WriteBytes(&v, sizeof(v)); }
    bool ReadInt(int* v) const {
        if (m_Bytes.size() - m_Position < sizeof(*v)) {
            return false;
        }
        std::memcpy(v, m_Bytes.data() + m_Position, sizeof(*v));
        m_Position += sizeof(*v);
        return true;
    }
    int ReadBytes(void* out, int size) const {
        const size_t n = std::min(size_t(size), m_Bytes.size() - m_Position);
        if (n == 0) {
            return -1;
        }
        std::memcpy(out, m_Bytes.data() + m_Position, n);
        m_Position += n;
        return int(n);
    }
    void SetPos(int position) const { m_Position = size_t(position); }

private:
    std::vector<unsigned char> m_Bytes;
    mutable size_t m_Position = 0;
};

constexpr int s_RecordSize = 48; // of one vertex, as the model files store them

template <class File> void WriteInts(File& file, int bytes) {
    for (int i = 0; i < bytes / 4; i++) {
        file.WriteInt(i);
    }
}

template <class File> unsigned int SumInts(const File& file) {
    unsigned int sum = 0;
    for (int v; file.ReadInt(&v);) {
        sum = sum * 31 + unsigned(v);
    }
    return sum;
}

template <class File> void BM_FileWriteInts(benchmark::State& state) { // range: bytes of the file
    for (auto _ : state) {
        File file;
        WriteInts(file, int(state.range(0)));
        benchmark::DoNotOptimize(file);
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(state.iterations() * state.range(0));
}

template <class File> void BM_FileWriteRecords(benchmark::State& state) {
    const unsigned char record[s_RecordSize] = {1, 2, 3};
    const int count = int(state.range(0)) / s_RecordSize;
    for (auto _ : state) {
        File file;
        for (int i = 0; i < count; i++) {
            file.WriteBytes(record, s_RecordSize);
        }
        benchmark::DoNotOptimize(file);
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(state.iterations() * count * s_RecordSize);
}

template <class File> void BM_FileReadInts(benchmark::State& state) {
    File file;
    WriteInts(file, int(state.range(0)));
    for (auto _ : state) {
        file.SetPos(0);
        unsigned int sum = SumInts(file);
        benchmark::DoNotOptimize(sum);
    }
    state.SetBytesProcessed(state.iterations() * state.range(0));
}

template <class File> void BM_FileReadRecords(benchmark::State& state) {
    File file;
    WriteInts(file, int(state.range(0)));
    unsigned char record[s_RecordSize];
    for (auto _ : state) {
        file.SetPos(0);
        while (file.ReadBytes(record, s_RecordSize) == s_RecordSize) {
            benchmark::DoNotOptimize(record);
        }
    }
    state.SetBytesProcessed(state.iterations() * state.range(0));
}

void Sizes(benchmark::internal::Benchmark* b) {
    for (const int bytes : {1 << 10, 1 << 16, 1 << 22}) {
        b->Arg(bytes);
    }
}

BENCHMARK_TEMPLATE(BM_FileWriteInts, cFile)->Apply(Sizes);
BENCHMARK_TEMPLATE(BM_FileWriteInts, PlainFile)->Apply(Sizes);
BENCHMARK_TEMPLATE(BM_FileWriteRecords, cFile)->Apply(Sizes);
BENCHMARK_TEMPLATE(BM_FileWriteRecords, PlainFile)->Apply(Sizes);
BENCHMARK_TEMPLATE(BM_FileReadInts, cFile)->Apply(Sizes);
BENCHMARK_TEMPLATE(BM_FileReadInts, PlainFile)->Apply(Sizes);
BENCHMARK_TEMPLATE(BM_FileReadRecords, cFile)->Apply(Sizes);
BENCHMARK_TEMPLATE(BM_FileReadRecords, PlainFile)->Apply(Sizes);

const cBenchCheck s_Check("files", [] {
    cFile ours;
    PlainFile theirs;
    WriteInts(ours, 100000);
    WriteInts(theirs, 100000);
    ours.SetPos(0);
    return ours.GetSize() == 100000 && SumInts(ours) == SumInts(theirs);
});

} // namespace
