#include "editors/submit.h"

#include "editors/messages.h"
#include "widgets/submit_progress.h"

using namespace Qt::Literals::StringLiterals;

namespace quorvane {

void RunSubmit(QWidget* page, const CString& caption, CLightingDatabase& database, const SubmitSteps& steps) {
    SubmitFailures failures;
    bool isOnDisk = false;
    ProviderFailure whyNot;
    {
        SubmitProgress progress(page, u"正在提交数据……"_s);
        const ProgressCallback tell = [&progress](int done, int total) { progress(done, total); };
        if (steps.prepare) {
            steps.prepare(tell);
        }
        SubmitScope scope(database);
        failures = steps.write(tell);
        isOnDisk = scope.Finish();
        whyNot = database.LastFailure();
        steps.compare(failures);
        failures.whyUnread = database.LastFailure();
    }
    TellFailures(page, caption, failures);
    if (failures.None() && !isOnDisk) {
        TellNotOnDisk(page, caption, whyNot);
    }
}

}  // namespace quorvane
