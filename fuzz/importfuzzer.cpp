// One importer fed arbitrary bytes: it must refuse or read them without touching memory it does not own.
#include FUZZ_HEADER
#include "core/import/importsupport.h"
#include "core/import/matriximporter.h"

#include <QFile>
#include <cstddef>
#include <cstdint>
#include <type_traits>

namespace {

template <typename Importer>
bool readWith(const Importer& importer, const QByteArray& data, InstrumentFile* file, QString* message)
{
    if constexpr (std::is_same<Importer, MatrixImporter>::value) {
        // The parameter file stays the real one; the data file is what varies.
        static const QByteArray parameters = [] {
            QFile file(QStringLiteral(FUZZ_SAMPLES "/omicron_flat/20201111_0001.mtrx"));
            return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
        }();
        return importer.read(data, parameters, QStringLiteral(FUZZ_PATH), file, message);
    } else {
        return importer.read(data, QStringLiteral(FUZZ_PATH), file, message);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const QByteArray bytes = QByteArray::fromRawData(reinterpret_cast<const char*>(data), int(size));
    static const FUZZ_IMPORTER importer;
    InstrumentFile file;
    QString message;
    if (readWith(importer, bytes, &file, &message)) {
        for (ImportedChannel& channel : file.channels) {
            if (channel.z.size() != qsizetype(channel.width) * channel.height)
                __builtin_trap();
            ImportSupport::fillMissing(channel);
        }
    } else if (message.isEmpty()) {
        __builtin_trap(); // a refusal always says why
    }
    return 0;
}
