// The "disputes" module: POST /api/app/disputes/<action>.

module disputes {
  dispute;
  endDisputeAutoSubmitAction;
  grantDisputeAutoSubmitAction;
  letDisputeGoAction;
  list;
  markDisputeSentAction;
  prepareDisputeAction;
  settings;
  submitDisputeAction;
  updateDisputeSettingsAction;
}
