// The "skills" module: POST /api/app/skills/<action>.

module skills {
  editor;
  pack;
  packSkill;
  page;
  skill;
}
