// The "surveys" module: POST /api/app/surveys/<action>.

module surveys {
  createSurveyAction;
  deleteSurveyAction;
  list;
  survey;
  updateProductAction;
  updateSurveyAction;
}
