#include "editors/submit.h"

#include "editors/messages.h"
#include "widgets/submit_progress.h"

using namespace Qt::Literals::StringLiterals;

namespace quorvane {

bool RunSubmit(QWidget* page, const CString& caption, CLightingDatabase& database,
               const std::function<SubmitFailures(const ProgressCallback&)>& submit,
               const std::function<PhotoProblem()>& photoProblem) {
    SubmitFailures failures;
    bool isOnDisk = false;
    {
        SubmitProgress progress(page, u"正在提交数据……"_s);
        SubmitScope scope(database);
        failures = submit([&progress](int done, int total) { progress(done, total); });
        isOnDisk = scope.Finish();
    }
    if (!failures.None()) {
        TellFailures(page, caption, failures, photoProblem ? photoProblem() : PhotoProblem::None);
    } else if (!isOnDisk) {
        ShowMessage(page, u"数据已经写入,但磁盘报告错误,断电后可能丢失。"_s, caption);
    }
    return failures.None() && isOnDisk;
}

}  // namespace quorvane
