"use strict";(()=>{})();
