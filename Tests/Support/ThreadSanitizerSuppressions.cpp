/// Qt's own locks and reference counts are not instrumented: what they order looks unordered. Only the
/// hand-over of a future's result is left out, never everything that Qt calls.
extern "C" const char* __tsan_default_suppressions();

const char* __tsan_default_suppressions() { // NOLINT(bugprone-reserved-identifier): the sanitizer's own name
    return "called_from_lib:libQt6Core.so.6\n"
           "race:QFutureInterface\n"
           "race:QtPrivate::ResultStoreBase\n"
           "race_top:QWaitCondition\n"
           "race_top:QtConcurrent::\n"
           "race_top:QThreadPool\n";
}
