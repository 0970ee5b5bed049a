#include "registry/client_editor.h"

#include <set>
#include <utility>

namespace corvane {
namespace {

/// The smallest positive number that no client bears.
// Intended: gaps are filled, so that numbers need not rise with the position.
std::int32_t FirstFreeID(const RecordArray<Client>& av_Clients) {
  std::set<std::int32_t> taken;
  for (const Client& client : av_Clients) taken.insert(client.ID);
  std::int32_t id = 1;
  while (taken.contains(id)) ++id;
  return id;
}

}  // namespace

ClientEditor::ClientEditor(const Parts& av_Parts)
    : RecordEditorOf(av_Parts, av_Parts.registry.Clients, av_Parts.form.Lst_Clients, av_Parts.form.Txt_ClientName,
                     "Choose a Client") {}

void ClientEditor::ShowFields(std::int64_t al_Index) {
  const Client& client = registry_.Clients[al_Index];
  form_.Lbl_ClientID.SetText(std::to_string(client.ID));
  form_.Txt_ClientFolder.SetText(client.Folder);
  form_.Txt_OstrelUserID.SetText(client.UserID);
  form_.Txt_OstrelPassword.SetText(client.Password);
}

void ClientEditor::StoreFields(std::int64_t al_Index) {
  Client& client = registry_.Clients[al_Index];
  client.Folder = form_.Txt_ClientFolder.text();
  client.UserID = form_.Txt_OstrelUserID.text();
  client.Password = form_.Txt_OstrelPassword.text();
}

void ClientEditor::ClearFields() {
  form_.Lbl_ClientID.SetText("");
  for (TextField* field : {&form_.Txt_ClientFolder, &form_.Txt_OstrelUserID, &form_.Txt_OstrelPassword}) {
    field->SetText("");
  }
}

void ClientEditor::AppendNew() {
  Client client;
  client.ID = FirstFreeID(registry_.Clients);
  client.Name = "Client " + std::to_string(client.ID);
  client.Folder = "F" + std::to_string(client.ID);
  registry_.Clients.Append(std::move(client));
}

}  // namespace corvane
