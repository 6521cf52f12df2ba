// The "setup" module: POST /api/app/setup/<action>.

module setup {
  brainRevealAction;
  businessPage;
  completeSetupAction;
  computerPage;
  connectAiAction;
  connectPage;
  facePage;
  kestPage;
  launchAction;
  launchPage;
  payPage;
  planPage;
  resetSetupAction;
  saveBusinessAction;
  saveComputerColorAction;
  saveKestNamesAction;
  saveLeadFaceAction;
  saveSurveyAction;
  saveSurveyAnswerAction;
  setupStatusAction;
  surveyPage;
}
