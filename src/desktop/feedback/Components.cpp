#include "KAL_AUTO_Node/Components.h"

#include "feedback/MessageBox.h"
#include "platform/RuntimeError.h"

namespace KAL_AUTO_Node {

namespace {

// The suite's stored commands quote texts with single quotes, its programs with double ones.
class LabelValidator : public TextValidator {
  public:
    bool ValidateText(const std::string& text) override {
        return text.find('"') == std::string::npos && text.find("''") == std::string::npos;
    }
};

class QuestionBox : public ConfirmationDialog {
  public:
    std::int32_t Ask(std::int16_t /*kind*/, const std::string& message, std::int32_t /*icon*/,
                     std::int32_t /*buttons*/, const std::string& title) override {
        switch (MsgBox(QString::fromStdString(message), QMessageBox::Question,
                       QMessageBox::Yes | QMessageBox::YesToAll | QMessageBox::No | QMessageBox::Cancel,
                       QString::fromStdString(title))) {
        case QMessageBox::Yes:
            return Create;
        case QMessageBox::YesToAll:
            return CreateAll;
        case QMessageBox::No:
            return Skip;
        default:
            return Stop;
        }
    }
};

} // namespace

Component::~Component() = default;

ComponentFactory::ComponentFactory() {
    Register(TextValidator::Identifier, [] { return std::make_unique<LabelValidator>(); });
    Register(ConfirmationDialog::Identifier, [] { return std::make_unique<QuestionBox>(); });
}

void ComponentFactory::Register(const std::string& identifier, Creator creator) {
    creators_[identifier] = std::move(creator);
}

std::unique_ptr<Component> ComponentFactory::Make(const std::string& identifier) const {
    const auto found = creators_.find(identifier);
    return found == creators_.end() || !found->second ? nullptr : found->second();
}

void ComponentFactory::RefuseComponent(const std::string& identifier) {
    throw RuntimeError(ErrorNumber::CannotCreateComponent, "Cannot create the component " + identifier);
}

} // namespace KAL_AUTO_Node
